#pragma once

#include "command/Verb.h"

#include <span>

namespace brindle::tools {

/// The verbs of diskutil that change a disk: mount, unmount, rename, eject, eraseVolume and eraseDisk. They act with
/// the context's actor and are refused where there is none. The target is looked up in the context's source: as an
/// identifier, a device node, a mount point or a volume name, which only one volume may bear. No argument is an option,
/// so that a name can be anything. What was begun is ended when the terminal or the reader of the output goes.
[[nodiscard]] std::span<const Verb> actingVerbs();

} // namespace brindle::tools

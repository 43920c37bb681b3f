#pragma once

#include "acting/Actor.h"
#include "inventory/InventorySource.h"

#include <span>
#include <string>
#include <string_view>

namespace brindle::tools {

/// What a command printed and ended with.
struct Outcome {
    int status = 0;
    std::string output; ///< For standard output.
    std::string errors; ///< For standard error.
};

/// Whether \a verb is one of mount, unmount, rename, eject, eraseVolume and eraseDisk, in any case.
[[nodiscard]] bool isActingVerb(std::string_view verb);

/// Runs `diskutil VERB ARGUMENTS...`. The target is looked up in \a source: as an identifier, a device node, a mount
/// point or a volume name, which only one volume may bear. No argument is an option, so that a name can be anything.
[[nodiscard]] Outcome runActingVerb(std::string_view verb, std::span<const std::string> arguments,
                                    InventorySource &source, Actor &actor);

/// Lets what was begun be ended when the terminal or the reader of the output goes: SIGHUP and SIGPIPE are ignored.
void ignoreHangUps();

} // namespace brindle::tools

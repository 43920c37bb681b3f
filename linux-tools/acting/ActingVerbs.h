#pragma once

#include "acting/Actor.h"
#include "command/Command.h"

#include <string_view>

namespace brindle::tools {

/// Runs `diskutil VERB ARGUMENTS...` for mount, unmount, rename, eject, eraseVolume and eraseDisk with the context's
/// actor, which is there. The target is looked up in its source: as an identifier, a device node, a mount point or a
/// volume name, which only one volume may bear. No argument is an option, so that a name can be anything. Returns
/// kWrongUsage, with nothing printed, for another number of arguments.
[[nodiscard]] int runActingVerb(Context &context, std::string_view verb, Arguments arguments);

/// Lets what was begun be ended when the terminal or the reader of the output goes: SIGHUP and SIGPIPE are ignored.
void ignoreHangUps();

} // namespace brindle::tools

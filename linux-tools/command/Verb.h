#pragma once

#include "command/Command.h"

#include <string_view>

namespace brindle::tools {

/// A verb of diskutil.
struct Verb {
    std::string_view name;
    std::string_view usage; ///< What stands behind the name.
    std::string_view help;  ///< One sentence, without its full stop.

    /// Runs it. Gives kWrongUsage, with nothing printed, where the arguments are not those of the usage.
    int (*run)(Context &context, const Verb &verb, Arguments arguments);
};

} // namespace brindle::tools

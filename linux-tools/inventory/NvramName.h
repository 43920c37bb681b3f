#pragma once

#include <string_view>
#include <vector>

namespace brindle::tools {

/// A variable of the firmware as it may be named.
struct NvramName {
    std::string_view guid;
    std::string_view name;
};

/// What \a name, "GUID:name" or a plain name, may stand for, in the order in which it is looked for: a plain name is
/// the platform's own variable (7C436110-AB2A-4BBB-A880-FE41995C9F82), then the boot loader's.
[[nodiscard]] std::vector<NvramName> nvramNames(std::string_view name);

} // namespace brindle::tools

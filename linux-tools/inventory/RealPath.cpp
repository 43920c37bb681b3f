#include "inventory/RealPath.h"

#include <cstdlib>
#include <memory>

namespace brindle::tools {

std::string realPath(const std::string &name)
{
    if (name.find('/') == std::string::npos && name != "." && name != "..")
        return {};
    const std::unique_ptr<char, decltype(&std::free)> real(::realpath(name.c_str(), nullptr), &std::free);
    return real ? real.get() : std::string();
}

} // namespace brindle::tools

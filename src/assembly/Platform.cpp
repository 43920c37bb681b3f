#include "assembly/Platform.h"

#include <cstdlib>

namespace brindle {

PlatformChanges changesOfEnvironment()
{
    return {.toolRoot = environmentValue("BRINDLE_TOOL_ROOT")};
}

std::optional<ColorScheme> colorSchemeOfEnvironment()
{
    const std::optional<std::string> name = environmentValue("BRINDLE_SCHEME");
    if (name == "dark")
        return ColorScheme::dark;
    if (name == "light")
        return ColorScheme::light;
    return std::nullopt;
}

std::optional<std::string> environmentValue(const char *name)
{
    const char *value = std::getenv(name);
    return value && *value ? std::optional<std::string>(value) : std::nullopt;
}

} // namespace brindle

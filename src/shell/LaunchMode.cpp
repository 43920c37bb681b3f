#include "shell/LaunchMode.h"

#include "base/DefaultsKeys.h"
#include "base/Log.h"

#include <algorithm>
#include <iterator>
#include <optional>

namespace brindle {

namespace {

std::string storedText(const UserDefaults &defaults)
{
    return defaults.objectAs<std::string>(DefaultsKeys::kLaunchMode)
        .value_or(std::string(rawValue(LaunchMode::menuBar)));
}

LaunchMode modeOf(std::string_view text)
{
    return fromRawValue<LaunchMode>(text).value_or(LaunchMode::menuBar);
}

std::optional<std::string> textOf(const std::vector<std::string> &arguments)
{
    const auto found = std::ranges::find(arguments, kLaunchModeArgument);
    if (found == arguments.end() || std::next(found) == arguments.end())
        return std::nullopt;
    return *std::next(found);
}

} // namespace

LaunchMode launchMode(const UserDefaults &defaults)
{
    return modeOf(storedText(defaults));
}

LaunchMode launchModeAtStart(const std::vector<std::string> &arguments, const UserDefaults &defaults)
{
    if (const std::optional<std::string> text = textOf(arguments)) {
        Log::line("   🔌 Mode from argument: {}", *text);
        if (const auto mode = fromRawValue<LaunchMode>(*text))
            return *mode;
    }
    const std::string text = storedText(defaults);
    Log::line("   🔌 Mode from UserDefaults: {}", text);
    return modeOf(text);
}

} // namespace brindle

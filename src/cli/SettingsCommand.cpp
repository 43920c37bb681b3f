#include "cli/SettingsCommand.h"

#include "base/VisibleText.h"
#include "cli/DisplayText.h"
#include "cli/PreferenceText.h"
#include "cli/Terminal.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace brindle {

namespace {

using Json = nlohmann::ordered_json;
using ReadOrChange = std::function<ExitStatus(UserDefaults &)>;

std::string dump(const Json &json)
{
    return json.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

Json jsonOf(const UserDefaults &defaults, const Preference &preference)
{
    const std::optional<PropertyValue> value = readPreference(defaults, preference);
    return value ? preferenceJson(*value) : Json();
}

/// Where a view shows something else than what the program acts by, what it shows.
std::optional<bool> shownOtherwise(const UserDefaults &defaults, const Preference &preference)
{
    if (preference.type != Preference::Type::boolean)
        return std::nullopt;
    const bool shown = isShownOn(defaults, preference.key);
    return shown == isOn(defaults, preference.key) ? std::nullopt : std::optional(shown);
}

std::string jsonOfAll(const UserDefaults &defaults)
{
    Json settings = Json::object();
    for (const Preference &preference : allPreferences()) {
        Json &setting = settings[preference.key];
        setting["type"] = typeName(preference.type);
        setting["value"] = jsonOf(defaults, preference);
        setting["isSet"] = defaults.object(preference.key).has_value();
        if (const std::optional<bool> shown = shownOtherwise(defaults, preference))
            setting["shown"] = *shown;
    }
    return dump(settings);
}

/// What is to be said of a value beside the value itself.
std::string remarkOn(const UserDefaults &defaults, const Preference &preference)
{
    std::vector<std::string> remarks;
    const std::optional<PropertyValue> stored = defaults.object(preference.key);
    if (!stored)
        remarks.emplace_back("not set");
    else if (!isLegal(preference, *stored))
        remarks.push_back(fmt::format("stored as {}", preferenceText(*stored)));
    if (const std::optional<bool> shown = shownOtherwise(defaults, preference))
        remarks.push_back(fmt::format("shown as {}", *shown));
    return fmt::format("{}", fmt::join(remarks, ", "));
}

std::string valueText(const UserDefaults &defaults, const Preference &preference)
{
    const std::optional<PropertyValue> value = readPreference(defaults, preference);
    if (!value)
        return "–";
    if (const auto *data = value->as<PropertyValue::Data>())
        return fmt::format("{} bytes", data->size());
    return visibleText(preferenceText(*value));
}

std::string tableOfAll(const UserDefaults &defaults, const Terminal &terminal)
{
    const auto &all = allPreferences();
    const std::size_t keyWidth =
        std::ranges::max(all, {}, [](const Preference &one) { return one.key.size(); }).key.size();
    std::string table = styled(fmt::format("{:<{}}  VALUE", "KEY", keyWidth), Style::heading, terminal) + '\n';
    for (const Preference &preference : all) {
        const std::string remark = visibleText(remarkOn(defaults, preference));
        const std::string line = fmt::format("{:<{}}  {}{}", preference.key, keyWidth, valueText(defaults, preference),
                                             remark.empty() ? "" : fmt::format("  ({})", remark));
        table += (terminal.width == 0 ? line : elided(line, terminal.width)) + '\n';
    }
    return table;
}

ExitStatus print(const std::string &text)
{
    fmt::print("{}", text);
    return ExitStatus::done;
}

ExitStatus list(const UserDefaults &defaults, bool asJson)
{
    return print(asJson ? jsonOfAll(defaults) : tableOfAll(defaults, Terminal::ofStandardOutput()));
}

ExitStatus get(const UserDefaults &defaults, const Preference &preference, bool asJson)
{
    if (asJson)
        return print(dump(jsonOf(defaults, preference)));
    const std::optional<PropertyValue> value = readPreference(defaults, preference);
    return print(value ? visibleText(preferenceText(*value)) + '\n' : "");
}

ExitStatus set(UserDefaults &defaults, const Preference &preference, const PropertyValue &value)
{
    defaults.set(preference.key, value);
    keepSetting(defaults, preference.key.c_str());
    return ExitStatus::done;
}

/// What the first run writes is there before anything is read or changed, so that it takes no change back later.
Command onSettings(const GlobalOptions &options, ReadOrChange run)
{
    return [&options, run = std::move(run)] {
        return onMachine(options, [&](Platform platform) {
            initializePreferences(*platform.userDefaults);
            return run(*platform.userDefaults);
        });
    };
}

/// Takes the keys of the settings alone; the shells' completions offer what its description lists.
CLI::Validator isKey()
{
    std::vector<std::string> keys;
    for (const Preference &preference : allPreferences())
        keys.push_back(preference.key);
    const auto complaint = [](const std::string &key) {
        return findPreference(key) ? std::string()
                                   : fmt::format("there is no setting \"{}\"; `settings list` tells all", key);
    };
    return CLI::Validator(complaint, fmt::format("{{{}}}", fmt::join(keys, ",")));
}

void addKey(CLI::App &subcommand, std::string &key)
{
    subcommand.add_option("KEY", key, "The setting")->required()->check(isKey())->option_text("REQUIRED");
}

void addList(CLI::App &settings, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = settings.add_subcommand("list", "Tell all settings");
    const auto asJson = std::make_shared<bool>(false);
    subcommand->add_flag("--json", *asJson, "Print a JSON object of objects by key and nothing else");
    subcommand->callback([&options, &command, asJson] {
        command = onSettings(options, [asJson](UserDefaults &defaults) { return list(defaults, *asJson); });
    });
}

void addGet(CLI::App &settings, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = settings.add_subcommand("get", "Tell the value of a setting; nothing where it has none");
    const auto key = std::make_shared<std::string>();
    const auto asJson = std::make_shared<bool>(false);
    addKey(*subcommand, *key);
    subcommand->add_flag("--json", *asJson, "Print the value as JSON and nothing else; null where there is none");
    subcommand->callback([&options, &command, key, asJson] {
        command = onSettings(
            options, [key, asJson](UserDefaults &defaults) { return get(defaults, *findPreference(*key), *asJson); });
    });
}

void addSet(CLI::App &settings, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand = settings.add_subcommand("set", "Change a setting");
    const auto key = std::make_shared<std::string>();
    const auto text = std::make_shared<std::string>();
    addKey(*subcommand, *key);
    subcommand->add_option("VALUE", *text, "Its new value")->required()->option_text("REQUIRED");
    subcommand->callback([&options, &command, key, text] {
        const Preference &preference = *findPreference(*key);
        const std::optional<PropertyValue> value = preferenceFromText(preference, *text);
        if (!value)
            throw CLI::ValidationError(*key, fmt::format("takes {}, not \"{}\"", legalValues(preference), *text));
        command = onSettings(
            options, [&preference, value](UserDefaults &defaults) { return set(defaults, preference, *value); });
    });
}

} // namespace

void addSettingsCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *settings = app.add_subcommand("settings", "Tell or change the settings");
    settings->require_subcommand(1);
    addList(*settings, options, command);
    addGet(*settings, options, command);
    addSet(*settings, options, command);
}

} // namespace brindle

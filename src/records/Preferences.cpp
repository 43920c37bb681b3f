#include "records/Preferences.h"

#include "base/DefaultsKeys.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace brindle {

namespace {

using namespace DefaultsKeys;
using Type = Preference::Type;
using Read = Preference::Read;

Preference plainBool(const char *key)
{
    return {.key = key, .read = Read::plain, .whenMissing = false};
}

Preference plainBoolShownOn(const char *key, std::optional<bool> atFirstRun = {})
{
    return {.key = key, .read = Read::plain, .whenMissing = false, .shownWhenMissing = true, .atFirstRun = atFirstRun};
}

Preference objectBool(const char *key, bool byDefault)
{
    return {.key = key, .whenMissing = byDefault, .atFirstRun = byDefault};
}

/// One that the update service gives a value when it starts.
Preference updateBool(const char *key)
{
    return {.key = key, .read = Read::plain};
}

bool isPeriod(const double *seconds)
{
    return seconds && std::isfinite(*seconds) && *seconds > 0;
}

bool areTexts(const PropertyValue::Array *values)
{
    return values && std::ranges::all_of(*values, [](const auto &value) { return value.template as<std::string>(); });
}

bool areTexts(const PropertyValue::Dictionary *values)
{
    return values &&
           std::ranges::all_of(*values, [](const auto &entry) { return entry.second.template as<std::string>(); });
}

bool isOfType(Type type, const PropertyValue &value)
{
    switch (type) {
    case Type::boolean:
        return value.as<bool>();
    case Type::text:
        return value.as<std::string>();
    case Type::seconds:
        return isPeriod(value.as<double>());
    case Type::date:
        return value.as<PropertyValue::Date>();
    case Type::data:
        return value.as<PropertyValue::Data>();
    case Type::texts:
        return areTexts(value.as<PropertyValue::Array>());
    case Type::textsByText:
        return areTexts(value.as<PropertyValue::Dictionary>());
    }
    return false;
}

const Preference &booleanOf(std::string_view key)
{
    const Preference *preference = findPreference(key);
    if (preference == nullptr || preference->type != Type::boolean)
        throw std::logic_error("no Boolean key: " + std::string(key));
    return *preference;
}

} // namespace

const std::vector<Preference> &allPreferences()
{
    static const std::vector<Preference> all{
        plainBool(kPreferencesInitialized),
        objectBool(kShowInternalDisks, true),
        objectBool(kShowExternalDisks, true),
        objectBool(kShowRemovableDisks, true),
        objectBool(kShowDiskImages, false),
        plainBoolShownOn(kShowNotifications, true),
        objectBool(kAutoOpenFinderOnMount, true),
        plainBool(kAutoOpenConfigOnMount),
        plainBoolShownOn(kOpenEFIOnNotificationClick),
        plainBool(kEnableGlobalHotkey),
        plainBool(kShowDiskSpaceIndicator),
        plainBool(kLowerCaseShowDiskSpaceIndicator),
        plainBool(kShowSMARTStatus),
        {.key = kLaunchMode, .type = Type::text, .whenMissing = "menubar", .choices = {"menubar", "window"}},
        plainBool(kIsModeSwitchRelaunch),
        plainBool(kHasLaunchedBefore),
        plainBool(kHasRunBundleIDMigration),
        {.key = kAutoMountDiskUUIDs, .type = Type::textsByText, .whenMissing = PropertyValue::Dictionary()},
        {.key = kLastRefreshTime, .type = Type::date},
        {.key = kPersistedDisks, .type = Type::data},
        {.key = kPersistedExpandedDisks, .type = Type::texts},
        plainBool(kLaunchAtLogin),
        updateBool(kSUEnableAutomaticChecks),
        {.key = kSUScheduledCheckInterval, .type = Type::seconds},
        updateBool(kSUAutomaticallyUpdate),
        updateBool(kSUShowReleaseNotes),
        updateBool(kSUEnableSystemProfiling),
    };
    return all;
}

const Preference *findPreference(std::string_view key)
{
    const auto found = std::ranges::find(allPreferences(), key, &Preference::key);
    return found == allPreferences().end() ? nullptr : &*found;
}

bool isLegal(const Preference &preference, const PropertyValue &value)
{
    if (!isOfType(preference.type, value))
        return false;
    const auto *text = value.as<std::string>();
    return preference.choices.empty() || std::ranges::find(preference.choices, *text) != preference.choices.end();
}

std::optional<PropertyValue> readPreference(const UserDefaults &defaults, const Preference &preference)
{
    const std::optional<PropertyValue> value = defaults.object(preference.key);
    if (!value)
        return preference.whenMissing;
    if (preference.read == Preference::Read::plain)
        return defaults.boolForKey(preference.key);
    return isLegal(preference, *value) ? value : preference.whenMissing;
}

bool isOn(const UserDefaults &defaults, std::string_view key)
{
    return readPreference(defaults, booleanOf(key)) == PropertyValue(true);
}

bool isShownOn(const UserDefaults &defaults, std::string_view key)
{
    const Preference &preference = booleanOf(key);
    const bool byDefault = preference.shownWhenMissing.value_or(preference.whenMissing == PropertyValue(true));
    return defaults.objectAs<bool>(preference.key).value_or(byDefault);
}

void initializePreferences(UserDefaults &defaults)
{
    if (isOn(defaults, kPreferencesInitialized))
        return;
    for (const Preference &preference : allPreferences()) {
        if (preference.atFirstRun)
            defaults.set(preference.key, *preference.atFirstRun);
    }
    defaults.set(kPreferencesInitialized, true);
}

} // namespace brindle

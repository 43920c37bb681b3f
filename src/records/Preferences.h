#pragma once

#include "platform/UserDefaults.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// What may stand under one key of the user defaults, and what its readers take where nothing of use does.
///
/// There is no settings object: each reader goes to the store at each use. This is what all of them have in common.
struct Preference {
    /// The types of the values; the last two are an array and a dictionary of texts alone.
    enum class Type { boolean, text, seconds, date, data, texts, textsByText };

    /// How the program reads the key where it acts by it. The plain read takes numbers and words for a Boolean
    /// (UserDefaults::boolForKey()); the object read takes a value of another type for a missing one.
    enum class Read { plain, object };

    std::string key;
    Type type = Type::boolean;
    Read read = Read::object;
    std::optional<PropertyValue> whenMissing = {}; ///< What the program acts by; nullopt where that is nothing.
    std::optional<bool> shownWhenMissing = {};     ///< What a view shows, where that is something else.
    std::optional<bool> atFirstRun = {};           ///< What initializePreferences() writes.
    std::vector<std::string> choices = {};         ///< The legal texts; empty where all are.
};

/// All keys of the application.
[[nodiscard]] const std::vector<Preference> &allPreferences();

/// The preference of \a key, null where there is none.
[[nodiscard]] const Preference *findPreference(std::string_view key);

/// Whether \a value is of the preference's type, and one of its choices where it has any.
[[nodiscard]] bool isLegal(const Preference &preference, const PropertyValue &value);

/// What the program acts by: the stored value by the preference's own kind of read, else Preference::whenMissing.
[[nodiscard]] std::optional<PropertyValue> readPreference(const UserDefaults &defaults, const Preference &preference);

/// readPreference() of a Boolean \a key of DefaultsKeys.
[[nodiscard]] bool isOn(const UserDefaults &defaults, std::string_view key);

/// What a view that is bound to a Boolean \a key of DefaultsKeys shows: the stored Boolean, else its own default, which
/// reaches no other reader.
[[nodiscard]] bool isShownOn(const UserDefaults &defaults, std::string_view key);

/// Writes the first-run values, unless a plain read of "PreferencesInitialized" says that they were written before.
void initializePreferences(UserDefaults &defaults);

} // namespace brindle

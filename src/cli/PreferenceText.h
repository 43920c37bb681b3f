#pragma once

#include "records/Preferences.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

/// \a value as JSON: a date as "2026-01-31T08:00:00Z", data as the text of its bytes.
[[nodiscard]] nlohmann::ordered_json preferenceJson(const PropertyValue &value);

/// \a value in one line, as preferenceFromText() reads it: JSON, but for texts, dates and data, which have no quotes.
/// Bytes that are no UTF-8 become U+FFFD.
[[nodiscard]] std::string preferenceText(const PropertyValue &value);

/// The value that \a text says; nullopt where it is none that is legal for \a preference.
[[nodiscard]] std::optional<PropertyValue> preferenceFromText(const Preference &preference, const std::string &text);

/// All texts that preferenceFromText() takes; empty where they can't be counted.
[[nodiscard]] std::vector<std::string> valueChoices(const Preference &preference);

/// What preferenceFromText() takes, in words: "true or false".
[[nodiscard]] std::string legalValues(const Preference &preference);

/// "Bool", "String" and the like.
[[nodiscard]] std::string_view typeName(Preference::Type type);

} // namespace brindle

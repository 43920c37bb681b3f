#include "cli/PreferenceText.h"

#include "base/Error.h"
#include "records/SerializablePhysicalDisk.h"

#include <QDateTime>
#include <QTimeZone>

#include <fmt/chrono.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <charconv>
#include <chrono>

namespace brindle {

namespace {

using Json = nlohmann::ordered_json;
using Type = Preference::Type;

std::string dateText(PropertyValue::Date date)
{
    return fmt::format("{:%FT%T}Z", fmt::gmtime(std::chrono::system_clock::to_time_t(date)));
}

struct ToJson {
    Json operator()(bool value) const { return value; }
    Json operator()(std::int64_t value) const { return value; }
    Json operator()(double value) const { return value; }
    Json operator()(const std::string &value) const { return value; }
    Json operator()(PropertyValue::Date value) const { return dateText(value); }

    Json operator()(const PropertyValue::Data &value) const
    {
        std::string text;
        for (const std::byte byte : value)
            text += static_cast<char>(byte);
        return text;
    }

    Json operator()(const PropertyValue::Array &values) const
    {
        Json array = Json::array();
        for (const PropertyValue &value : values)
            array.push_back(preferenceJson(value));
        return array;
    }

    Json operator()(const PropertyValue::Dictionary &values) const
    {
        Json object = Json::object();
        for (const auto &[key, value] : values)
            object[key] = preferenceJson(value);
        return object;
    }
};

std::optional<PropertyValue> booleanFrom(const std::string &text)
{
    if (text != "true" && text != "false")
        return std::nullopt;
    return text == "true";
}

std::optional<PropertyValue> secondsFrom(const std::string &text)
{
    double value = 0;
    const char *end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, value);
    return error == std::errc() && rest == end ? std::optional<PropertyValue>(value) : std::nullopt;
}

std::optional<PropertyValue> dateFrom(const std::string &text)
{
    const QDateTime date =
        QDateTime::fromString(QString::fromStdString(text), QStringLiteral("yyyy-MM-dd'T'HH:mm:ss'Z'"));
    if (!date.isValid())
        return std::nullopt;
    using Date = PropertyValue::Date;
    const std::chrono::sys_seconds second{
        std::chrono::seconds(QDateTime(date.date(), date.time(), QTimeZone::utc()).toSecsSinceEpoch())};
    const bool isHeldByClock = second >= std::chrono::ceil<std::chrono::seconds>(Date::min()) &&
                               second <= std::chrono::floor<std::chrono::seconds>(Date::max());
    return isHeldByClock ? std::optional<PropertyValue>(Date(second)) : std::nullopt;
}

/// The one key of this type holds the list of disks.
std::optional<PropertyValue> dataFrom(const std::string &text)
{
    try {
        (void)decodeDisks(text);
    } catch (const Error &) {
        return std::nullopt;
    }
    PropertyValue::Data data;
    for (const char character : text)
        data.push_back(static_cast<std::byte>(character));
    return data;
}

/// A property list has no place for control characters.
bool isText(const Json &value)
{
    constexpr auto kIsControl = [](char character) { return static_cast<unsigned char>(character) < ' '; };
    return value.is_string() && std::ranges::none_of(value.get_ref<const std::string &>(), kIsControl);
}

std::optional<PropertyValue> textsFrom(const std::string &text)
{
    const Json json = Json::parse(text, nullptr, false);
    if (!json.is_array())
        return std::nullopt;
    PropertyValue::Array values;
    for (const Json &value : json) {
        if (!isText(value))
            return std::nullopt;
        values.emplace_back(value.get<std::string>());
    }
    return values;
}

std::optional<PropertyValue> textsByTextFrom(const std::string &text)
{
    const Json json = Json::parse(text, nullptr, false);
    if (!json.is_object())
        return std::nullopt;
    PropertyValue::Dictionary values;
    for (const auto &[key, value] : json.items()) {
        if (!isText(key) || !isText(value))
            return std::nullopt;
        values.insert_or_assign(key, value.get<std::string>());
    }
    return values;
}

std::optional<PropertyValue> valueOfType(Type type, const std::string &text)
{
    switch (type) {
    case Type::boolean:
        return booleanFrom(text);
    case Type::text:
        return text;
    case Type::seconds:
        return secondsFrom(text);
    case Type::date:
        return dateFrom(text);
    case Type::data:
        return dataFrom(text);
    case Type::texts:
        return textsFrom(text);
    case Type::textsByText:
        return textsByTextFrom(text);
    }
    return std::nullopt;
}

} // namespace

Json preferenceJson(const PropertyValue &value)
{
    return value.visit(ToJson());
}

std::string preferenceText(const PropertyValue &value)
{
    const Json json = preferenceJson(value);
    if (json.is_string())
        return json.get<std::string>();
    if (const auto *number = value.as<double>())
        return fmt::format("{}", *number);
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::optional<PropertyValue> preferenceFromText(const Preference &preference, const std::string &text)
{
    std::optional<PropertyValue> value = valueOfType(preference.type, text);
    return value && isLegal(preference, *value) ? std::move(value) : std::nullopt;
}

std::vector<std::string> valueChoices(const Preference &preference)
{
    return preference.type == Type::boolean ? std::vector<std::string>{"true", "false"} : preference.choices;
}

std::string legalValues(const Preference &preference)
{
    switch (preference.type) {
    case Type::boolean:
    case Type::text:
        return fmt::format("{}", fmt::join(valueChoices(preference), " or "));
    case Type::seconds:
        return "a number of seconds above 0";
    case Type::date:
        return "a date such as 2026-01-31T08:00:00Z";
    case Type::data:
        return "a JSON array of disks";
    case Type::texts:
        return "a JSON array of texts";
    case Type::textsByText:
        return "a JSON object of texts";
    }
    return {};
}

std::string_view typeName(Type type)
{
    switch (type) {
    case Type::boolean:
        return "Bool";
    case Type::text:
        return "String";
    case Type::seconds:
        return "Double";
    case Type::date:
        return "Date";
    case Type::data:
        return "Data";
    case Type::texts:
        return "Array";
    case Type::textsByText:
        return "Dictionary";
    }
    return {};
}

} // namespace brindle

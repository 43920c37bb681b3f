#include "machine/JsonObject.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <charconv>

namespace brindle::tools {
namespace {

using Json = nlohmann::ordered_json;

std::optional<std::string> fromHex(std::string_view digits)
{
    if (digits.size() % 2 != 0)
        return std::nullopt;
    std::string bytes;
    for (std::size_t at = 0; at < digits.size(); at += 2) {
        unsigned char byte = 0;
        const char *const end = digits.data() + at + 2;
        if (std::from_chars(digits.data() + at, end, byte, 16).ptr != end)
            return std::nullopt;
        bytes.push_back(static_cast<char>(byte));
    }
    return bytes;
}

} // namespace

JsonValueError::JsonValueError(std::string path, const std::string &message)
    : std::runtime_error(message),
      m_path(std::move(path))
{
}

JsonObject::JsonObject(const Json &value, std::string path) : m_value(&value), m_path(std::move(path))
{
    if (!value.is_object())
        throw JsonValueError(m_path, "must be an object");
}

std::string JsonObject::text(std::string_view key) const
{
    const Json &value = require(key);
    if (!value.is_string())
        refuse(key, "must be a text");
    return value.get<std::string>();
}

std::string JsonObject::textOr(std::string_view key, std::string_view absent) const
{
    return find(key) ? text(key) : std::string(absent);
}

std::string JsonObject::bytes(const std::string &key) const
{
    const std::string hexKey = key + "Hex";
    if (!find(hexKey))
        return textOr(key, "");
    if (find(key))
        refuse(hexKey, fmt::format("must not stand beside \"{}\"", key));
    auto decoded = fromHex(text(hexKey));
    if (!decoded)
        refuse(hexKey, "must be pairs of hexadecimal digits");
    return *std::move(decoded);
}

bool JsonObject::flag(std::string_view key) const
{
    const Json *const value = find(key);
    if (value && !value->is_boolean())
        refuse(key, "must be true or false");
    return value && value->get<bool>();
}

std::uint64_t JsonObject::number(std::string_view key) const
{
    const Json &value = require(key);
    if (!value.is_number_unsigned())
        refuse(key, "must be a whole number");
    return value.get<std::uint64_t>();
}

std::uint64_t JsonObject::numberOr(std::string_view key, std::uint64_t absent) const
{
    return find(key) ? number(key) : absent;
}

std::optional<JsonObject> JsonObject::object(std::string_view key) const
{
    const Json *const value = find(key);
    return value ? std::optional<JsonObject>(JsonObject(*value, pathTo(key))) : std::nullopt;
}

std::vector<JsonObject> JsonObject::objects(std::string_view key) const
{
    const Json &list = require(key);
    if (!list.is_array())
        refuse(key, "must be a list");
    std::vector<JsonObject> all;
    for (std::size_t index = 0; index < list.size(); ++index)
        all.emplace_back(list[index], fmt::format("{}[{}]", pathTo(key), index));
    return all;
}

std::vector<JsonObject> JsonObject::objectsIfPresent(std::string_view key) const
{
    return find(key) ? objects(key) : std::vector<JsonObject>();
}

void JsonObject::refuse(std::string_view key, const std::string &message) const
{
    throw JsonValueError(pathTo(key), message);
}

const Json *JsonObject::find(std::string_view key) const
{
    const auto found = m_value->find(std::string(key));
    return found == m_value->end() ? nullptr : &*found;
}

const Json &JsonObject::require(std::string_view key) const
{
    const Json *const value = find(key);
    if (!value)
        refuse(key, "the key is missing");
    return *value;
}

std::string JsonObject::pathTo(std::string_view key) const
{
    return m_path.empty() ? std::string(key) : fmt::format("{}.{}", m_path, key);
}

} // namespace brindle::tools

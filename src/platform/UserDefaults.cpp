#include "platform/UserDefaults.h"

#include "base/Text.h"

namespace brindle {

bool UserDefaults::boolForKey(const std::string &key) const
{
    const std::optional<PropertyValue> value = object(key);
    if (!value)
        return false;
    if (const auto *boolean = value->as<bool>())
        return *boolean;
    if (const auto *integer = value->as<std::int64_t>())
        return *integer != 0;
    if (const auto *real = value->as<double>())
        return *real != 0;
    if (const auto *text = value->as<std::string>()) {
        const std::string word = lowerCased(*text);
        return word == "yes" || word == "true" || word == "1";
    }
    return false;
}

} // namespace brindle

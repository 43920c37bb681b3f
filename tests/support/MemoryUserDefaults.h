#pragma once

#include "platform/UserDefaults.h"

#include <mutex>
#include <optional>
#include <string>

namespace brindle {

/// User defaults that live and end with the object.
class MemoryUserDefaults final : public UserDefaults {
public:
    [[nodiscard]] std::optional<PropertyValue> object(const std::string &key) const override;
    void set(const std::string &key, PropertyValue value) override;
    void remove(const std::string &key) override;
    std::optional<Error> synchronize() override { return std::nullopt; }

private:
    void announce(const std::string &key);

    mutable std::mutex m_mutex;
    PropertyValue::Dictionary m_values;
};

} // namespace brindle

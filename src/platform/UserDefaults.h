#pragma once

#include "base/Error.h"

#include <QObject>

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace brindle {

/// A value of the user defaults. The types are kept apart: the Boolean true is not the number 1.
class PropertyValue {
public:
    using Date = std::chrono::system_clock::time_point;
    using Data = std::vector<std::byte>;
    using Array = std::vector<PropertyValue>;
    using Dictionary = std::map<std::string, PropertyValue>;

    PropertyValue(bool value) : m_value(value) {}
    PropertyValue(std::int64_t value) : m_value(value) {}
    PropertyValue(int value) : m_value(std::int64_t{value}) {}
    PropertyValue(double value) : m_value(value) {}
    PropertyValue(std::string value) : m_value(std::move(value)) {}
    PropertyValue(const char *value) : m_value(std::string(value)) {}
    PropertyValue(Date value) : m_value(value) {}
    PropertyValue(Data value) : m_value(std::move(value)) {}
    PropertyValue(Array value) : m_value(std::move(value)) {}
    PropertyValue(Dictionary value) : m_value(std::move(value)) {}

    /// The value as a T where it is exactly that type, else null.
    template <typename T>
    [[nodiscard]] const T *as() const
    {
        return std::get_if<T>(&m_value);
    }

    /// Calls \a visitor with the value in its own type.
    template <typename Visitor>
    decltype(auto) visit(Visitor &&visitor) const
    {
        return std::visit(std::forward<Visitor>(visitor), m_value);
    }

    bool operator==(const PropertyValue &) const = default;

private:
    std::variant<bool, std::int64_t, double, std::string, Date, Data, Array, Dictionary> m_value;
};

/// The settings and the small persistent state of the application, as flat keys.
///
/// A key that was never written and a value of an unwanted type are told apart from false by object(); boolForKey() is
/// the plain read, which gives false for both. Safe to use from any thread; what another process has written is seen by
/// the next read. Keys and texts are UTF-8.
class UserDefaults : public QObject {
    Q_OBJECT

public:
    /// The object read: the value as it is stored, nullopt where the key has none.
    [[nodiscard]] virtual std::optional<PropertyValue> object(const std::string &key) const = 0;

    /// Stores \a value at once for this process and, with all else that is set in the same turn of the event loop, soon
    /// for all others. A value that can't be written out stays in this process and is tried again at the next write.
    virtual void set(const std::string &key, PropertyValue value) = 0;

    /// Nothing where the key has no value.
    virtual void remove(const std::string &key) = 0;

    /// Writes out now what has not been written yet. What goes wrong is logged and given back; a later write tries
    /// again.
    virtual std::optional<Error> synchronize() = 0;

    /// The object read of a value of type T: nullopt where the key has none or one of another type.
    template <typename T>
    [[nodiscard]] std::optional<T> objectAs(const std::string &key) const
    {
        const std::optional<PropertyValue> value = object(key);
        const T *typed = value ? value->as<T>() : nullptr;
        return typed ? std::optional<T>(*typed) : std::nullopt;
    }

    /// The plain read: a stored Boolean, whether a stored number is other than 0, whether a stored text is "YES",
    /// "true" or "1" in any case; false for all else and for a missing key.
    [[nodiscard]] bool boolForKey(const std::string &key) const;

Q_SIGNALS:
    /// The value of \a key differs from before, by this process or by another. Sent in the store's own thread.
    void valueChanged(const std::string &key);
};

} // namespace brindle

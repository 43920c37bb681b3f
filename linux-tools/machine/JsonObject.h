#pragma once

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace brindle::tools {

/// A value of a JSON text is missing or not what it should be.
class JsonValueError : public std::runtime_error {
public:
    JsonValueError(std::string path, const std::string &message);

    [[nodiscard]] const std::string &path() const { return m_path; } ///< As JsonPositions takes it.

private:
    std::string m_path;
};

/// An object of a JSON text, read strictly: a key has the type that is asked for, or is missing where that is allowed.
/// Everything else throws JsonValueError. The value outlives the object.
class JsonObject {
public:
    JsonObject(const nlohmann::ordered_json &value, std::string path);

    [[nodiscard]] std::string text(std::string_view key) const;
    [[nodiscard]] std::string textOr(std::string_view key, std::string_view absent) const;

    /// Raw bytes: the text of \a key, or the hexadecimal digits of the key with "Hex" behind it; empty without either.
    [[nodiscard]] std::string bytes(const std::string &key) const;

    [[nodiscard]] bool flag(std::string_view key) const; ///< False where it is missing.
    [[nodiscard]] std::uint64_t number(std::string_view key) const;
    [[nodiscard]] std::uint64_t numberOr(std::string_view key, std::uint64_t absent) const;

    [[nodiscard]] std::optional<JsonObject> object(std::string_view key) const;
    [[nodiscard]] std::vector<JsonObject> objects(std::string_view key) const;          ///< The key must be there.
    [[nodiscard]] std::vector<JsonObject> objectsIfPresent(std::string_view key) const; ///< Empty where it is missing.

    /// Says that the value of \a key is wrong.
    [[noreturn]] void refuse(std::string_view key, const std::string &message) const;

private:
    [[nodiscard]] const nlohmann::ordered_json *find(std::string_view key) const;
    [[nodiscard]] const nlohmann::ordered_json &require(std::string_view key) const;
    [[nodiscard]] std::string pathTo(std::string_view key) const;

    const nlohmann::ordered_json *m_value;
    std::string m_path;
};

} // namespace brindle::tools

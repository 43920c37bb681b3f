#pragma once

#include <optional>
#include <string>

namespace brindle {

/// What the running system says of itself.
class SystemValues {
public:
    virtual ~SystemValues() = default;

    /// The name that people know it by: "macOS", "Debian GNU/Linux".
    [[nodiscard]] virtual std::string systemName() const = 0;

    /// Of macOS three numbers with points between, "15.1.0"; else as the system writes it, "24.04". nullopt where it
    /// has none.
    [[nodiscard]] virtual std::optional<std::string> systemVersion() const = 0;
};

} // namespace brindle

#pragma once

namespace brindle {

/// The place of the desktop where programs without a window show a small icon. Main thread only.
class StatusItemHost {
public:
    virtual ~StatusItemHost() = default;

    /// Whether the program can show an icon there that the user sees. Answers at once.
    [[nodiscard]] virtual bool isAvailable() const = 0;
};

} // namespace brindle

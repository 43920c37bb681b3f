#pragma once

#include "platform/Dialogs.h"

namespace brindle {

/// Dialogs of a program that can ask nobody: each ends at once as if it had been cancelled.
class NoDialogs final : public Dialogs {
public:
    [[nodiscard]] QCoro::Task<std::size_t> alert(Alert alert) override;
    [[nodiscard]] QCoro::Task<std::optional<Secret>> securePrompt(SecurePrompt prompt) override;
    [[nodiscard]] QCoro::Task<std::optional<std::string>> textPrompt(TextPrompt prompt) override;
    [[nodiscard]] QCoro::Task<std::optional<std::string>> savePanel(SavePanel panel) override;
};

} // namespace brindle

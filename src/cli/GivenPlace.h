#pragma once

#include "platform/Dialogs.h"

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace brindle {

/// Dialogs of a command whose arguments say where to save: the panel isn't shown, the other dialogs are \a others.
class GivenPlace final : public Dialogs {
public:
    GivenPlace(const std::filesystem::path &place, std::unique_ptr<Dialogs> others);

    [[nodiscard]] QCoro::Task<std::size_t> alert(Alert alert) override;
    [[nodiscard]] QCoro::Task<std::optional<Secret>> securePrompt(SecurePrompt prompt) override;
    [[nodiscard]] QCoro::Task<std::optional<std::string>> textPrompt(TextPrompt prompt) override;
    [[nodiscard]] QCoro::Task<std::optional<std::string>> savePanel(SavePanel panel) override;

private:
    std::string m_place;
    std::unique_ptr<Dialogs> m_others;
};

} // namespace brindle

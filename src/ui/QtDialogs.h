#pragma once

#include "platform/Dialogs.h"

#include "base/Completion.h"

class QQmlEngine;

namespace brindle {

/// Dialogs as windows of their own, one at a time, over the window in front, which takes no input meanwhile. A dialog
/// whose window is closed, or whose parent is hidden, ends as if it had been cancelled.
class QtDialogs final : public Dialogs {
public:
    explicit QtDialogs(QQmlEngine &engine); ///< Set up, and outlives the dialogs.

    [[nodiscard]] QCoro::Task<std::size_t> alert(Alert alert) override;
    [[nodiscard]] QCoro::Task<std::optional<Secret>> securePrompt(SecurePrompt prompt) override;
    [[nodiscard]] QCoro::Task<std::optional<std::string>> textPrompt(TextPrompt prompt) override;
    [[nodiscard]] QCoro::Task<std::optional<std::string>> savePanel(SavePanel panel) override;

private:
    class Turn;

    QQmlEngine &m_engine;
    Completion<bool> m_lastTurn; ///< Complete once the dialog that was asked for last has ended.
};

} // namespace brindle

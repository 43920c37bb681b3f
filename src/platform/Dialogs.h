#pragma once

#include "base/Secret.h"

#include <QCoroTask>

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace brindle {

enum class AlertStyle { warning, informational };

/// A message that waits for one of its buttons.
struct Alert {
    std::string messageText;
    std::string informativeText;
    AlertStyle style = AlertStyle::warning;
    std::vector<std::string> buttons{"OK"}; ///< The first is the default one.
};

/// An alert with a field that doesn't show what is typed into it.
struct SecurePrompt {
    Alert alert;
    std::string placeholder; ///< Stands in the empty field.
};

/// An alert with a line of text, which has the keyboard at first.
struct TextPrompt {
    Alert alert;
    std::string placeholder; ///< Stands in the empty field.
    std::string text;        ///< What the field holds at first.
};

/// The choice of a new file or folder to write to. The user may make folders on the way, and give any extension.
struct SavePanel {
    std::string title;
    std::string message;
    std::string proposedName;
    std::string startFolder; ///< Absolute.
};

/// Asks the user, one modal dialog at a time. Texts are UTF-8 and plain: they may hold a stranger's names. Where nobody
/// can be asked, every dialog ends as if it had been cancelled. Main thread only.
class Dialogs {
public:
    virtual ~Dialogs() = default;

    /// The index of the button that was pressed; that of the last one where the alert was closed in another way.
    [[nodiscard]] virtual QCoro::Task<std::size_t> alert(Alert alert) = 0;

    /// What was typed, which may be empty; nullopt unless the first button was pressed.
    [[nodiscard]] virtual QCoro::Task<std::optional<Secret>> securePrompt(SecurePrompt prompt) = 0;

    /// The same for a text that may be seen.
    [[nodiscard]] virtual QCoro::Task<std::optional<std::string>> textPrompt(TextPrompt prompt) = 0;

    /// The absolute path that was chosen; nullopt where the panel was cancelled.
    [[nodiscard]] virtual QCoro::Task<std::optional<std::string>> savePanel(SavePanel panel) = 0;
};

} // namespace brindle

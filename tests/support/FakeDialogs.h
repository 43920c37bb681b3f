#pragma once

#include "platform/Dialogs.h"

#include <deque>
#include <vector>

namespace brindle {

/// Dialogs that answer by themselves, at a later turn of the event loop, and remember what they showed.
///
/// Alerts are answered with their first button. A prompt or panel without a prepared answer is cancelled.
class FakeDialogs : public Dialogs {
public:
    std::deque<std::optional<Secret>> secureAnswers;
    std::deque<std::optional<std::string>> textAnswers;
    std::deque<std::optional<std::string>> savePaths;

    std::vector<Alert> alerts;
    std::vector<SecurePrompt> securePrompts;
    std::vector<TextPrompt> textPrompts;
    std::vector<SavePanel> savePanels;

    QCoro::Task<std::size_t> alert(Alert alert) override;
    QCoro::Task<std::optional<Secret>> securePrompt(SecurePrompt prompt) override;
    QCoro::Task<std::optional<std::string>> textPrompt(TextPrompt prompt) override;
    QCoro::Task<std::optional<std::string>> savePanel(SavePanel panel) override;
};

} // namespace brindle

#include "support/FakeDialogs.h"

#include "base/Completion.h"

#include <utility>

namespace brindle {

namespace {

/// The first of \a answers, which is taken out, once the event loop has turned.
template <typename T>
QCoro::Task<std::optional<T>> nextOf(std::deque<std::optional<T>> *answers)
{
    Completion<std::optional<T>> answer;
    if (answers->empty()) {
        answer.complete(std::nullopt);
    } else {
        answer.complete(std::move(answers->front()));
        answers->pop_front();
    }
    co_return co_await answer;
}

} // namespace

QCoro::Task<std::size_t> FakeDialogs::alert(Alert alert)
{
    alerts.push_back(std::move(alert));
    Completion<std::size_t> answer;
    answer.complete(0);
    co_return co_await answer;
}

QCoro::Task<std::optional<Secret>> FakeDialogs::securePrompt(SecurePrompt prompt)
{
    securePrompts.push_back(std::move(prompt));
    return nextOf(&secureAnswers);
}

QCoro::Task<std::optional<std::string>> FakeDialogs::textPrompt(TextPrompt prompt)
{
    textPrompts.push_back(std::move(prompt));
    return nextOf(&textAnswers);
}

QCoro::Task<std::optional<std::string>> FakeDialogs::savePanel(SavePanel panel)
{
    savePanels.push_back(std::move(panel));
    return nextOf(&savePaths);
}

} // namespace brindle

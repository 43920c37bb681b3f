#include "cli/GivenPlace.h"

#include <utility>

namespace brindle {

GivenPlace::GivenPlace(const std::filesystem::path &place, std::unique_ptr<Dialogs> others)
    : m_place(std::filesystem::absolute(place)),
      m_others(std::move(others))
{
}

QCoro::Task<std::size_t> GivenPlace::alert(Alert alert)
{
    return m_others->alert(std::move(alert));
}

QCoro::Task<std::optional<Secret>> GivenPlace::securePrompt(SecurePrompt prompt)
{
    return m_others->securePrompt(std::move(prompt));
}

QCoro::Task<std::optional<std::string>> GivenPlace::textPrompt(TextPrompt prompt)
{
    return m_others->textPrompt(std::move(prompt));
}

QCoro::Task<std::optional<std::string>> GivenPlace::savePanel(SavePanel /*panel*/)
{
    std::string place = m_place;
    co_return place;
}

} // namespace brindle

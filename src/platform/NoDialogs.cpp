#include "platform/NoDialogs.h"

namespace brindle {

QCoro::Task<std::size_t> NoDialogs::alert(Alert alert)
{
    co_return alert.buttons.size() - 1;
}

QCoro::Task<std::optional<Secret>> NoDialogs::securePrompt(SecurePrompt /*prompt*/)
{
    co_return std::nullopt;
}

QCoro::Task<std::optional<std::string>> NoDialogs::textPrompt(TextPrompt /*prompt*/)
{
    co_return std::nullopt;
}

QCoro::Task<std::optional<std::string>> NoDialogs::savePanel(SavePanel /*panel*/)
{
    co_return std::nullopt;
}

} // namespace brindle

#include "inventory/Identifier.h"

#include <fmt/format.h>

#include <charconv>

namespace brindle::tools {
namespace {

bool dropPrefix(std::string_view &text, std::string_view prefix)
{
    if (!text.starts_with(prefix))
        return false;
    text.remove_prefix(prefix.size());
    return true;
}

std::optional<std::uint64_t> takeNumber(std::string_view &text)
{
    std::uint64_t number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc())
        return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

} // namespace

std::optional<Identifier> parseIdentifier(std::string_view text)
{
    dropPrefix(text, "/dev/");
    if (!dropPrefix(text, "disk"))
        return std::nullopt;
    const auto disk = takeNumber(text);
    if (!disk)
        return std::nullopt;
    Identifier identifier{.disk = *disk, .partition = std::nullopt};
    if (dropPrefix(text, "s")) {
        identifier.partition = takeNumber(text);
        if (!identifier.partition)
            return std::nullopt;
    }
    return text.empty() ? std::optional(identifier) : std::nullopt;
}

std::string diskIdentifier(std::uint64_t disk)
{
    return fmt::format("disk{}", disk);
}

std::string partitionIdentifier(std::string_view diskIdentifier, std::uint64_t partition)
{
    return fmt::format("{}s{}", diskIdentifier, partition);
}

} // namespace brindle::tools

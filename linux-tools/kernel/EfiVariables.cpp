#include "kernel/EfiVariables.h"

#include "inventory/NvramName.h"
#include "kernel/Files.h"
#include "text/Words.h"

#include <algorithm>

namespace brindle::tools {
namespace {

std::string lowerCased(std::string text)
{
    std::ranges::transform(text, text.begin(), [](char character) {
        return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
    });
    return text;
}

/// efivarfs names a file "name-guid", the GUID in lower case, and puts 4 bytes of attributes before the value.
std::optional<NvramVariable> readVariable(const std::string &directory, std::string_view guid, std::string_view name)
{
    constexpr std::size_t kAttributes = 4;
    if (name.empty() || name.find('/') != std::string_view::npos)
        return std::nullopt;
    const auto bytes = readFile(directory + '/' + std::string(name) + '-' + lowerCased(std::string(guid)));
    if (!bytes || bytes->size() < kAttributes)
        return std::nullopt;
    return NvramVariable{.guid = upperCased(guid), .name = std::string(name), .value = bytes->substr(kAttributes)};
}

} // namespace

std::optional<NvramVariable> readEfiVariable(const std::string &directory, std::string_view name)
{
    for (const NvramName &candidate : nvramNames(name)) {
        if (auto variable = readVariable(directory, candidate.guid, candidate.name))
            return variable;
    }
    return std::nullopt;
}

} // namespace brindle::tools

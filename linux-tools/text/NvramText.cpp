#include "text/NvramText.h"

#include "text/Words.h"

#include <fmt/format.h>

#include <iterator>

namespace brindle::tools {

std::string nvramText(std::string_view name, std::string_view value)
{
    std::string text = printable(name) + '\t';
    for (const char character : value) {
        const bool isPlain = character >= ' ' && character <= '~';
        if (isPlain)
            text += character;
        else
            fmt::format_to(std::back_inserter(text), "%{:02x}", static_cast<unsigned char>(character));
    }
    return text + '\n';
}

std::string nvramMissingText(std::string_view name)
{
    return fmt::format("nvram: Error getting variable - '{}': (iokit/common) data was not found\n", printable(name));
}

} // namespace brindle::tools

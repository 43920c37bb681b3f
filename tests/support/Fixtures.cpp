#include "support/Fixtures.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

namespace brindle {

std::string contentsOf(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        ADD_FAILURE() << "can't read " << file;
    return {std::istreambuf_iterator<char>(stream), {}};
}

std::string fixture(std::string_view name)
{
    return contentsOf(std::filesystem::path(BRINDLE_TESTS) / "fixtures" / name);
}

std::string withCarriageReturns(std::string_view text)
{
    std::string result;
    for (const char character : text) {
        if (character == '\n')
            result += '\r';
        result += character;
    }
    return result;
}

} // namespace brindle

#include "support/Fixtures.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <utility>

namespace brindle {

std::string contentsOf(const std::filesystem::path &file)
{
    std::ifstream stream(file, std::ios::binary);
    if (!stream)
        ADD_FAILURE() << "can't read " << file;
    std::ostringstream bytes;
    bytes << stream.rdbuf();
    return std::move(bytes).str();
}

std::string fixture(std::string_view name)
{
    return contentsOf(std::filesystem::path(BRINDLE_TESTS) / "fixtures" / name);
}

void expectGolden(const std::filesystem::path &path, const std::string &text)
{
    const std::filesystem::path golden = std::filesystem::path(BRINDLE_TESTS) / "golden" / path;
    if (std::getenv("BRINDLE_UPDATE_GOLDEN")) {
        std::filesystem::create_directories(golden.parent_path());
        std::ofstream(golden, std::ios::binary) << text;
    }
    EXPECT_EQ(text, contentsOf(golden));
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

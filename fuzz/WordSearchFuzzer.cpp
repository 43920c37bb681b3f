// Many words in one pass against a search for each of them. The words are the first line of the input.

#include "Require.h"

#include "detectors/WordSearch.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <string_view>
#include <vector>

using namespace brindle;

namespace {

/// The pieces of \a line between blanks, but for those that are too short to be words.
std::vector<std::string_view> wordsOf(std::string_view line)
{
    std::vector<std::string_view> words;
    while (!line.empty()) {
        const std::string_view word = line.substr(0, line.find(' '));
        if (word.size() >= 2)
            words.push_back(word);
        line.remove_prefix(word.size() == line.size() ? word.size() : word.size() + 1);
    }
    return words;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const std::string_view input(reinterpret_cast<const char *>(data), size);
    const std::size_t end = input.find('\n');
    if (end == std::string_view::npos)
        return 0;
    const std::vector<std::string_view> words = wordsOf(input.substr(0, end));
    const std::string_view text = input.substr(end + 1);

    std::set<std::string_view> expected;
    for (const std::string_view word : words) {
        if (text.find(word) != std::string_view::npos)
            expected.insert(word);
    }
    require(WordSearch({words}).wordsIn(text) == expected, "the words that a text holds");
    return 0;
}

#include "detectors/WordSearch.h"

namespace brindle {

WordSearch::WordSearch(std::initializer_list<Words> lists)
{
    for (const Words words : lists) {
        for (const std::string_view word : words)
            m_buckets[bucketOf(word, 0)].push_back(word);
    }
}

std::set<std::string_view> WordSearch::wordsIn(std::string_view text) const
{
    std::set<std::string_view> found;
    for (std::size_t at = 0; at + 1 < text.size(); ++at) {
        for (const std::string_view word : m_buckets[bucketOf(text, at)]) {
            if (text.substr(at).starts_with(word))
                found.insert(word);
        }
    }
    return found;
}

std::size_t WordSearch::bucketOf(std::string_view text, std::size_t at)
{
    constexpr unsigned kLowBits = 0x1F; // which tell the letters of one case apart
    return (static_cast<unsigned char>(text[at]) & kLowBits) << 5U |
           (static_cast<unsigned char>(text[at + 1]) & kLowBits);
}

} // namespace brindle

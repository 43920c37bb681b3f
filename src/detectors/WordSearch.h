#pragma once

#include <array>
#include <cstddef>
#include <initializer_list>
#include <set>
#include <span>
#include <string_view>
#include <vector>

namespace brindle {

/// Looks for many words at once, in one pass over a text.
class WordSearch {
public:
    using Words = std::span<const std::string_view>;

    explicit WordSearch(std::initializer_list<Words> lists); ///< Words of at least two characters, which live on.

    /// Those of the words that \a text holds anywhere, also within other words.
    [[nodiscard]] std::set<std::string_view> wordsIn(std::string_view text) const;

private:
    /// Words that begin with the same two small letters, and few others.
    using Bucket = std::vector<std::string_view>;

    static std::size_t bucketOf(std::string_view text, std::size_t at);

    std::array<Bucket, 1024> m_buckets;
};

} // namespace brindle

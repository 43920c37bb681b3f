#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace brindle {

/// One entry in which two folders differ.
struct TreeDifference {
    enum class Kind {
        onlyInFirst,
        onlyInSecond,
        kind, ///< A folder here, a file there.
        size,
        content,
        link, ///< Two links that lead elsewhere.
    };

    Kind kind;
    std::string path; ///< From the folders that are compared.

    bool operator==(const TreeDifference &) const = default;
};

/// What a comparison of two folders found.
struct TreeComparison {
    std::vector<TreeDifference> differences; ///< In the order of the names.
    std::size_t fileCount = 0;               ///< Files that both have.
    std::uint64_t bytesCompared = 0;         ///< Of the second folder's files whose size agrees.
    std::uint64_t bytesFromDevice = 0;       ///< What was read from a device for these, in whole blocks.
};

} // namespace brindle

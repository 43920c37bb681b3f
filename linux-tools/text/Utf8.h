#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

namespace brindle::tools {

struct CodePoint {
    char32_t value = 0;
    std::size_t length = 1; ///< Bytes.
};

/// The well-formed code point that \a text, which isn't empty, begins with.
[[nodiscard]] std::optional<CodePoint> firstCodePoint(std::string_view text);

} // namespace brindle::tools

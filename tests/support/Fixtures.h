#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace brindle {

/// The bytes of a file; a file that can't be read fails the test and is empty.
[[nodiscard]] std::string contentsOf(const std::filesystem::path &file);

/// The text of tests/fixtures/NAME, such as "diskutil/list-two-systems.txt".
[[nodiscard]] std::string fixture(std::string_view name);

/// \a text with carriage returns before its newlines.
[[nodiscard]] std::string withCarriageReturns(std::string_view text);

} // namespace brindle

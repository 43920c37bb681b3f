#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace brindle {

/// The bytes of a file; a file that can't be read fails the test and is empty.
[[nodiscard]] std::string contentsOf(const std::filesystem::path &file);

/// The text of tests/fixtures/NAME, such as "diskutil/list-two-systems.txt".
[[nodiscard]] std::string fixture(std::string_view name);

/// Compares \a text with what was reviewed by hand: the file at \a path of tests/golden. BRINDLE_UPDATE_GOLDEN=1 writes
/// that file anew: review the difference before you keep it.
void expectGolden(const std::filesystem::path &path, const std::string &text);

/// \a text with carriage returns before its newlines.
[[nodiscard]] std::string withCarriageReturns(std::string_view text);

} // namespace brindle

#pragma once

#include "platform/SystemValues.h"

#include <filesystem>
#include <string_view>
#include <vector>

namespace brindle {

/// The value of \a name in the text of an os-release file, without its quotes and escapes; nullopt where it has none.
/// The format is os-release(5)'s: assignments as in a shell, one a line, of which the last one holds.
[[nodiscard]] std::optional<std::string> osReleaseValue(std::string_view text, std::string_view name);

/// What the distribution says of itself in its os-release file, which is read anew at each question. A system without
/// one is "Linux" without a version.
class LinuxSystemValues final : public SystemValues {
public:
    /// The first of \a files that can be read counts.
    explicit LinuxSystemValues(std::vector<std::filesystem::path> files = {"/etc/os-release", "/usr/lib/os-release"});

    [[nodiscard]] std::string systemName() const override;
    [[nodiscard]] std::optional<std::string> systemVersion() const override;

private:
    [[nodiscard]] std::optional<std::string> value(std::string_view name) const;

    std::vector<std::filesystem::path> m_files;
};

} // namespace brindle

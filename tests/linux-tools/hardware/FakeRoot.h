#pragma once

#include <filesystem>
#include <string_view>

namespace brindle::tools {

/// A folder that stands for a machine's root; removed at the end.
class FakeRoot {
public:
    FakeRoot();
    ~FakeRoot();
    FakeRoot(const FakeRoot &) = delete;
    FakeRoot &operator=(const FakeRoot &) = delete;

    /// Writes the file, whose path begins without "/", with the folders that it lies in.
    FakeRoot &with(const std::filesystem::path &file, std::string_view bytes);

    [[nodiscard]] const std::filesystem::path &path() const { return m_path; }

private:
    std::filesystem::path m_path;
};

} // namespace brindle::tools

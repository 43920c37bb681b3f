#pragma once

#include "platform/FileManager.h"

#include <filesystem>

namespace brindle {

/// Files by the kernel's own calls.
class LinuxFileManager : public FileManager {
public:
    /// \a comparer is the module that compares folders, loaded when it is first wanted: its cryptographic library costs
    /// a start more than half a millisecond. Without it compareItems() throws an Error.
    explicit LinuxFileManager(std::filesystem::path comparer = {});

    [[nodiscard]] QCoro::Task<bool> fileExists(std::string path) override;
    [[nodiscard]] QCoro::Task<std::string> volumeAt(std::string mountPoint) override;
    [[nodiscard]] QCoro::Task<std::vector<std::string>> contentsOfDirectory(std::string path) override;
    QCoro::Task<> copyItem(std::string from, std::string to, CancellationToken token = {}) override;
    [[nodiscard]] QCoro::Task<TreeComparison> compareItems(std::string first, std::string second) override;
    QCoro::Task<> removeItem(std::string path) override;

private:
    std::filesystem::path m_comparer;
};

} // namespace brindle

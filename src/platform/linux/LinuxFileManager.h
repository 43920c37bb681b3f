#pragma once

#include "platform/FileManager.h"

namespace brindle {

/// Files by the kernel's own calls.
class LinuxFileManager : public FileManager {
public:
    [[nodiscard]] bool fileExists(const std::string &path) const override;
    [[nodiscard]] QCoro::Task<std::vector<std::string>> contentsOfDirectory(std::string path) override;
    QCoro::Task<> copyItem(std::string from, std::string to, CancellationToken token = {}) override;
    [[nodiscard]] QCoro::Task<TreeComparison> compareItems(std::string first, std::string second) override;
    QCoro::Task<> removeItem(std::string path) override;
};

} // namespace brindle

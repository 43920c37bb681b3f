#pragma once

#include "platform/linux/LinuxFileManager.h"

#include "base/Error.h"

#include <deque>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// The real file manager, which remembers what it was asked and can be told to fail.
class TestFileManager : public FileManager {
public:
    /// For each of "list", "copy" and "remove" what the next calls throw, in their order; nullopt: nothing.
    std::map<std::string, std::deque<std::optional<Error>>> failures;

    /// "copy FROM TO", "remove PATH", "list PATH".
    std::vector<std::string> asked;

    [[nodiscard]] QCoro::Task<bool> fileExists(std::string path) override;
    [[nodiscard]] QCoro::Task<std::string> volumeAt(std::string mountPoint) override;
    [[nodiscard]] QCoro::Task<std::vector<std::string>> contentsOfDirectory(std::string path) override;
    QCoro::Task<> copyItem(std::string from, std::string to, CancellationToken token = {}) override;
    [[nodiscard]] QCoro::Task<TreeComparison> compareItems(std::string first, std::string second) override;
    QCoro::Task<> removeItem(std::string path) override;

private:
    void failIfTold(const std::string &operation);

    LinuxFileManager m_real;
};

} // namespace brindle

#pragma once

#include "platform/linux/LinuxFileManager.h"

#include "base/Completion.h"

#include <fmt/format.h>

#include <map>
#include <optional>
#include <string>
#include <utility>

namespace brindle {

/// The real file manager, one of whose works waits until it is let go on.
class HeldFileManager final : public FileManager {
public:
    /// Which: "list 1", "copy 2", "remove 1". Before it has come.
    void hold(std::string work) { m_held = std::move(work); }

    [[nodiscard]] bool isHolding() const { return m_isHolding; }

    void release() { m_release.complete(true); }

    [[nodiscard]] QCoro::Task<bool> fileExists(std::string path) override { return m_real.fileExists(std::move(path)); }

    [[nodiscard]] QCoro::Task<std::string> volumeAt(std::string mountPoint) override
    {
        return m_real.volumeAt(std::move(mountPoint));
    }

    [[nodiscard]] QCoro::Task<std::vector<std::string>> contentsOfDirectory(std::string path) override
    {
        auto turn = waitForTurn("list");
        co_await turn;
        auto listing = m_real.contentsOfDirectory(path);
        co_return co_await listing;
    }

    QCoro::Task<> copyItem(std::string from, std::string to, CancellationToken token = {}) override
    {
        auto turn = waitForTurn("copy");
        co_await turn;
        auto copy = m_real.copyItem(from, to, token);
        co_await copy;
    }

    [[nodiscard]] QCoro::Task<TreeComparison> compareItems(std::string first, std::string second) override
    {
        auto comparison = m_real.compareItems(first, second);
        co_return co_await comparison;
    }

    QCoro::Task<> removeItem(std::string path) override
    {
        auto turn = waitForTurn("remove");
        co_await turn;
        auto removal = m_real.removeItem(path);
        co_await removal;
    }

private:
    QCoro::Task<> waitForTurn(std::string work)
    {
        if (fmt::format("{} {}", work, ++m_counts[work]) != m_held)
            co_return;
        m_isHolding = true;
        co_await m_release;
        m_isHolding = false;
    }

    LinuxFileManager m_real;
    std::string m_held;
    bool m_isHolding = false;
    Completion<bool> m_release;
    std::map<std::string, int> m_counts;
};

} // namespace brindle

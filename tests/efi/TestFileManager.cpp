#include "TestFileManager.h"

#include <fmt/format.h>

namespace brindle {

void TestFileManager::failIfTold(const std::string &operation)
{
    auto &planned = failures[operation];
    if (planned.empty())
        return;
    const auto next = planned.front();
    planned.pop_front();
    if (next)
        throw *next;
}

QCoro::Task<bool> TestFileManager::fileExists(std::string path)
{
    return m_real.fileExists(path);
}

QCoro::Task<std::string> TestFileManager::volumeAt(std::string mountPoint)
{
    return m_real.volumeAt(std::move(mountPoint));
}

QCoro::Task<std::vector<std::string>> TestFileManager::contentsOfDirectory(std::string path)
{
    asked.push_back(fmt::format("list {}", path));
    failIfTold("list");
    auto listing = m_real.contentsOfDirectory(path);
    co_return co_await listing;
}

QCoro::Task<> TestFileManager::copyItem(std::string from, std::string to, CancellationToken token)
{
    asked.push_back(fmt::format("copy {} {}", from, to));
    failIfTold("copy");
    auto copy = m_real.copyItem(from, to, token);
    co_await copy;
}

QCoro::Task<TreeComparison> TestFileManager::compareItems(std::string first, std::string second)
{
    auto comparison = m_real.compareItems(first, second);
    co_return co_await comparison;
}

QCoro::Task<> TestFileManager::removeItem(std::string path)
{
    asked.push_back(fmt::format("remove {}", path));
    failIfTold("remove");
    auto removal = m_real.removeItem(path);
    co_await removal;
}

} // namespace brindle

#pragma once

#include "platform/TreeComparison.h"
#include "platform/linux/FolderEntries.h"

#include <cstdint>
#include <string>
#include <vector>

namespace brindle {

/// One comparison of two folders, as FileManager::compareItems() promises it. Blocks; both folders' files are read side
/// by side.
class TreeComparer {
public:
    TreeComparer(std::string first, std::string second);

    [[nodiscard]] TreeComparison run(); ///< Once.

private:
    void compareFolders(const std::string &path);
    void compareEntries(const std::string &path, unsigned char firstType, unsigned char secondType);
    void compareFiles(const std::string &path);
    void compareLinks(const std::string &path);
    void compareContents();
    void note(TreeDifference::Kind kind, const std::string &path);

    std::string m_first;
    std::string m_second;
    std::vector<std::string> m_files; ///< Of the same size in both, by their paths from the folders.
    TreeComparison m_result;
};

} // namespace brindle

#pragma once

#include "platform/linux/FileDescriptor.h"
#include "platform/linux/FolderEntries.h"

#include "base/Error.h"

#include <cstdint>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include <sys/stat.h>

namespace brindle {

/// One copy of a file or a folder with all that is beneath it, as FileManager::copyItem() promises it. Blocks.
///
/// Files are read and written by descriptors relative to open folders, so that nobody who renames a folder meanwhile
/// leads the copy elsewhere.
class TreeCopy {
public:
    TreeCopy(std::string from, std::string to, std::stop_token stop);

    void run(); ///< Once.

private:
    /// Where an entry lies.
    struct Place {
        int folder;
        const std::string &name;
    };

    void refuseCopyIntoItself(const std::string &folderOfTarget) const;
    void copyEntry(Place from, Place to, unsigned char type);
    void copyFolder(Place from, Place to);
    void copyFile(Place from, Place to);
    void copyLink(Place from, Place to);

    void copyContent(int from, int to, const struct stat &status);
    void copyExtents(int from, int to, std::int64_t size);
    void copyRange(int from, int to, std::int64_t begin, std::int64_t end);
    [[nodiscard]] std::int64_t copyRangeInKernel(int from, int to, std::int64_t begin, std::int64_t end);
    void copyRangeByHand(int from, int to, std::int64_t begin, std::int64_t end);
    void writeWhole(int to, std::string_view bytes, std::int64_t offset) const;

    void copyQualities(int from, int to, const struct stat &status);
    void copyAttributes(int from, int to);
    void copyAttribute(int from, int to, const char *name);
    void copyTimes(int to, const struct stat &status) const;

    void throwIfStopped() const;
    [[nodiscard]] Error creationError(int errorNumber) const;

    // How far the copy has got; their errors name them.
    std::string m_from;
    std::string m_to;
    std::size_t m_depth = 0; ///< 0: what the copy was asked for.

    std::stop_token m_stop;
    bool m_kernelCopies = true; ///< Until the kernel says that it can't between these two file systems.
    std::vector<char> m_buffer;
    std::vector<char> m_attributeNames;
    std::vector<char> m_attributeValue;
};

} // namespace brindle

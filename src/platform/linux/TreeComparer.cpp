#include "platform/linux/TreeComparer.h"

#include "platform/linux/Sha256.h"

#include "base/Error.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <deque>
#include <future>
#include <memory>
#include <utility>

#include <climits>
#include <dirent.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace brindle {

namespace {

using Kind = TreeDifference::Kind;

// Larger than the kernel reads ahead, so that the next piece comes while this one is digested.
constexpr std::size_t kBufferSize = 1024 * 1024;

// Of small files a device gives many in the time that it takes to answer for one.
constexpr std::size_t kFilesAhead = 32;

constexpr std::uint64_t kBlockSize = 512; // the unit of ru_inblock, see getrusage(2)

struct Digests {
    std::vector<Sha256::Digest> ofFiles;
    std::uint64_t bytesFromDevice = 0;
};

std::string joined(const std::string &folder, const std::string &name)
{
    return folder.empty() || name.empty() ? folder + name : folder + "/" + name;
}

std::vector<FolderEntry> sortedEntries(const std::string &path)
{
    const FileDescriptor folder = openFolder(AT_FDCWD, path, O_RDONLY, path);
    std::vector<FolderEntry> entries = entriesOf(folder, path);
    std::ranges::sort(entries, {}, &FolderEntry::name);
    return entries;
}

std::int64_t sizeOf(const std::string &path)
{
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0)
        throw Error::fromErrno(errno, path);
    return status.st_size;
}

std::string linkText(const std::string &path)
{
    std::array<char, PATH_MAX> text{};
    const ssize_t size = ::readlink(path.c_str(), text.data(), text.size());
    if (size < 0)
        throw Error::fromErrno(errno, path);
    return {text.data(), static_cast<std::size_t>(size)};
}

/// Opens a file and asks the system for its bytes, without waiting for them.
FileDescriptor openedAhead(const std::string &path, bool fromDevice)
{
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    if (!file)
        throw Error::fromErrno(errno, path);
    if (fromDevice)
        ::posix_fadvise(file.value(), 0, 0, POSIX_FADV_DONTNEED); // what was written lately lies in memory
    ::posix_fadvise(file.value(), 0, 0, POSIX_FADV_SEQUENTIAL);
    ::posix_fadvise(file.value(), 0, 0, POSIX_FADV_WILLNEED);
    return file;
}

Sha256::Digest digestOf(const FileDescriptor &file, const std::string &path, Sha256 &sha256, std::vector<char> &buffer)
{
    for (;;) {
        const ssize_t size = ::read(file.value(), buffer.data(), buffer.size());
        if (size < 0 && errno == EINTR)
            continue;
        if (size < 0)
            throw Error::fromErrno(errno, path);
        if (size == 0)
            return sha256.finish();
        sha256.add({buffer.data(), static_cast<std::size_t>(size)});
    }
}

/// What hasn't been written yet can't be dropped from memory, and isn't on the device either.
void flush(const std::string &path)
{
    const FileDescriptor folder = openFolder(AT_FDCWD, path, O_RDONLY, path);
    if (::syncfs(folder.value()) != 0)
        throw Error::fromErrno(errno, path);
}

/// What this thread has read from devices so far.
std::uint64_t bytesReadFromDevices()
{
    rusage usage{};
    ::getrusage(RUSAGE_THREAD, &usage);
    return static_cast<std::uint64_t>(usage.ru_inblock) * kBlockSize;
}

Digests digestsOf(const std::string &folder, const std::vector<std::string> &files, bool fromDevice)
{
    Sha256 sha256;
    std::vector<char> buffer(kBufferSize);
    Digests digests;
    digests.ofFiles.reserve(files.size());
    const std::uint64_t before = bytesReadFromDevices();
    std::deque<FileDescriptor> ahead;
    for (std::size_t opened = 0; const std::string &file : files) {
        for (; opened < files.size() && ahead.size() < kFilesAhead; ++opened)
            ahead.push_back(openedAhead(joined(folder, files[opened]), fromDevice));
        digests.ofFiles.push_back(digestOf(ahead.front(), joined(folder, file), sha256, buffer));
        ahead.pop_front();
    }
    digests.bytesFromDevice = bytesReadFromDevices() - before;
    return digests;
}

} // namespace

TreeComparer::TreeComparer(std::string first, std::string second)
    : m_first(std::move(first)),
      m_second(std::move(second))
{
}

TreeComparison TreeComparer::run()
{
    compareFolders("");
    compareContents();
    std::ranges::stable_sort(m_result.differences, {}, &TreeDifference::path);
    return std::move(m_result);
}

void TreeComparer::compareFolders(const std::string &path)
{
    const auto firstEntries = sortedEntries(joined(m_first, path));
    const auto secondEntries = sortedEntries(joined(m_second, path));
    auto first = firstEntries.begin();
    auto second = secondEntries.begin();
    while (first != firstEntries.end() || second != secondEntries.end()) {
        if (second == secondEntries.end() || (first != firstEntries.end() && first->name < second->name)) {
            note(Kind::onlyInFirst, joined(path, first++->name));
        } else if (first == firstEntries.end() || second->name < first->name) {
            note(Kind::onlyInSecond, joined(path, second++->name));
        } else {
            compareEntries(joined(path, first->name), first->type, second->type);
            ++first;
            ++second;
        }
    }
}

void TreeComparer::compareEntries(const std::string &path, unsigned char firstType, unsigned char secondType)
{
    if (firstType != secondType)
        return note(Kind::kind, path);
    if (firstType == DT_DIR)
        return compareFolders(path);
    if (firstType == DT_LNK)
        return compareLinks(path);
    if (firstType == DT_REG)
        compareFiles(path);
}

void TreeComparer::compareFiles(const std::string &path)
{
    ++m_result.fileCount;
    if (sizeOf(joined(m_first, path)) == sizeOf(joined(m_second, path)))
        m_files.push_back(path);
    else
        note(Kind::size, path);
}

void TreeComparer::compareLinks(const std::string &path)
{
    if (linkText(joined(m_first, path)) != linkText(joined(m_second, path)))
        note(Kind::link, path);
}

void TreeComparer::compareContents()
{
    flush(m_second);
    auto firstDigests = std::async(std::launch::async, [this] { return digestsOf(m_first, m_files, false); });
    const Digests second = digestsOf(m_second, m_files, true);
    const Digests first = firstDigests.get();
    m_result.bytesFromDevice = second.bytesFromDevice;
    for (std::size_t i = 0; i < m_files.size(); ++i) {
        m_result.bytesCompared += static_cast<std::uint64_t>(sizeOf(joined(m_second, m_files[i])));
        if (first.ofFiles[i] != second.ofFiles[i])
            note(Kind::content, m_files[i]);
    }
}

void TreeComparer::note(Kind kind, const std::string &path)
{
    m_result.differences.push_back({kind, path});
}

} // namespace brindle

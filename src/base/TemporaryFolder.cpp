#include "base/TemporaryFolder.h"

#include "base/Error.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <random>

#include <sys/stat.h>

namespace brindle {

namespace fs = std::filesystem;

namespace {

/// An empty TMPDIR counts as none, as for other programs.
fs::path folderOfTemporaryFiles()
{
    const char *const named = std::getenv("TMPDIR");
    return named && *named ? named : "/tmp";
}

} // namespace

fs::path makeTemporaryFolder(std::string_view purpose)
{
    constexpr mode_t kOwnerAlone = 0700;
    const fs::path parent = folderOfTemporaryFiles();
    std::random_device random;
    while (true) {
        fs::path folder = parent / fmt::format("brindle-{}-{}", purpose, random());
        if (::mkdir(folder.c_str(), kOwnerAlone) == 0)
            return folder;
        const int error = errno;
        if (error != EEXIST)
            throw Error::fromErrno(error, "No temporary folder can be made in " + parent.string());
    }
}

} // namespace brindle

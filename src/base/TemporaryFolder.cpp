#include "base/TemporaryFolder.h"

#include "base/Error.h"

#include <fmt/format.h>

#include <cerrno>
#include <random>

#include <sys/stat.h>

namespace brindle {

namespace fs = std::filesystem;

fs::path makeTemporaryFolder(std::string_view purpose)
{
    constexpr mode_t kOwnerAlone = 0700;
    const fs::path parent = fs::temp_directory_path();
    std::random_device random;
    while (true) {
        fs::path folder = parent / fmt::format("brindle-{}-{}", purpose, random());
        if (::mkdir(folder.c_str(), kOwnerAlone) == 0)
            return folder;
        if (errno != EEXIST)
            throw Error::fromErrno(errno, folder.string());
    }
}

} // namespace brindle

#include "machine/MachineFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <system_error>

#include <sys/auxv.h>

namespace brindle::tools {
namespace {

namespace fs = std::filesystem;

constexpr int kMostLinks = 40; // as many as the kernel follows

[[noreturn]] void refuse(const fs::path &program)
{
    throw MachineFileError(fmt::format(
        "{}: it can't be told which machine this program belongs to; call it by its path", program.string()));
}

/// The machine that a program in \a folder belongs to. What stands there as machine.json counts, readable or not.
std::optional<fs::path> rootAbove(const fs::path &folder)
{
    for (const fs::path &root : {folder.parent_path(), folder.parent_path().parent_path()}) {
        if (fs::exists(fs::symlink_status(root / kMachineFileName)))
            return root;
    }
    return std::nullopt;
}

/// The same for a folder as it was typed. Behind a link, ".." leads elsewhere than the text says.
std::optional<fs::path> rootAboveTyped(const fs::path &folder)
{
    const bool leadsUp = std::ranges::find(folder, fs::path("..")) != folder.end();
    return leadsUp ? std::nullopt : rootAbove((folder / "program").lexically_normal().parent_path());
}

/// Whether the folder holds descriptors or the like, which tell nothing of the path that was opened.
bool isOfProcesses(const fs::path &folder)
{
    return folder.string().starts_with("/proc/");
}

std::optional<fs::path> followToRoot(const fs::path &programPath)
{
    fs::path program = fs::absolute(programPath);
    for (int links = 0; links <= kMostLinks; ++links) {
        if (auto root = rootAboveTyped(program.parent_path()))
            return root;
        const fs::path folder = fs::canonical(program.parent_path());
        if (isOfProcesses(folder))
            refuse(programPath);
        if (auto root = rootAbove(folder))
            return root;
        program = folder / program.filename();
        if (!fs::is_symlink(program))
            return std::nullopt;
        program = folder / fs::read_symlink(program);
    }
    refuse(programPath);
}

} // namespace

std::optional<fs::path> MachineFile::findRoot(const fs::path &programPath)
{
    try {
        return followToRoot(programPath);
    } catch (const fs::filesystem_error &) {
        refuse(programPath);
    }
}

fs::path programPath()
{
    const auto *const path = reinterpret_cast<const char *>(::getauxval(AT_EXECFN)); // NOLINT: the kernel's pointer
    return path ? fs::path(path) : fs::path();
}

} // namespace brindle::tools

#include "support/FileTree.h"

#include "support/Fixtures.h"

#include <fmt/format.h>

#include <fstream>
#include <functional>

namespace brindle {

namespace fs = std::filesystem;

namespace {

std::string shown(const std::string &bytes)
{
    constexpr std::size_t kLongestShown = 100;
    if (bytes.size() <= kLongestShown)
        return bytes;
    return fmt::format("{} bytes, hash {:x}", bytes.size(), std::hash<std::string>{}(bytes));
}

} // namespace

void writeFile(const fs::path &file, std::string_view bytes)
{
    fs::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << bytes;
}

std::map<std::string, std::string> treeOf(const fs::path &folder)
{
    std::map<std::string, std::string> tree;
    if (!fs::exists(folder))
        return tree;
    for (const auto &entry : fs::recursive_directory_iterator(folder)) {
        std::string &content = tree[entry.path().lexically_relative(folder)];
        if (entry.is_symlink())
            content = "-> " + fs::read_symlink(entry.path()).string();
        else
            content = entry.is_directory() ? "/" : shown(contentsOf(entry.path()));
    }
    return tree;
}

void writeSampleEFI(const fs::path &folder)
{
    writeFile(folder / ".hidden", "h");
    writeFile(folder / "BOOT/BOOTx64.efi", std::string(7000, 'b'));
    writeFile(folder / "OC/OpenCore.efi", std::string(9000, 'o'));
    writeFile(folder / "OC/config.plist", "<plist/>");
    writeFile(folder / "OC/Drivers/OpenRuntime.efi", "driver");
    writeFile(folder / "OC/Kexts/Lilu.kext/Info.plist", "info");
    fs::create_directories(folder / "OC/Tools");
}

} // namespace brindle

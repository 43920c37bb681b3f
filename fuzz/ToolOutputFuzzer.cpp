// Names of volumes, media, mount points and variables as strangers wrote them: the tools' text stays well-formed UTF-8
// and has the same lines as with a plain name.

#include "Require.h"

#include "text/DfText.h"
#include "text/DiskutilText.h"
#include "text/NvramText.h"
#include "text/Words.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

using namespace brindle;
using namespace brindle::tools;

namespace {

constexpr std::size_t kNameCells = 23;

Inventory machineWith(const std::string &name)
{
    const Volume volume{.fileSystem = "vfat", .version = "FAT32", .name = name, .uuid = "67E3-17ED"};
    return {.disks = {{.identifier = "disk2",
                       .node = "/dev/sda",
                       .mediaName = name,
                       .scheme = "GUID_partition_scheme",
                       .sizeBytes = 1000,
                       .volume = volume,
                       .partitions = {{.identifier = "disk2s1", .type = "EFI", .sizeBytes = 512, .volume = volume}}}},
            .mounts = {{.carrier = "disk2s1", .mountPoint = "/mnt/" + name, .space = Space{}}}};
}

std::string textOf(const Inventory &machine, std::string_view variable)
{
    return listText(machine) + infoText(*findDevice(machine, "disk2")) + infoText(*findDevice(machine, "disk2s1")) +
           dfText(machine.mounts, 1024) + nvramText("name", variable) + nvramMissingText(variable);
}

auto lineCount(std::string_view text)
{
    return std::ranges::count(text, '\n');
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) // NOLINT
{
    const std::string name(reinterpret_cast<const char *>(data), size);
    const std::string text = textOf(machineWith(name), name);
    const std::string shown = printable(name);

    require(lineCount(text) == lineCount(textOf(machineWith(name.empty() ? "" : "EFI"), "EFI")),
            "a name neither adds nor takes a line");
    require(printable(shown) == shown, "what is printable stays as it is");
    require(cellCount(cutToCells(shown, kNameCells)) <= kNameCells, "a cut name fits its cells");
    require(std::ranges::none_of(text,
                                 [](char character) {
                                     return character != '\n' && character != '\t' &&
                                            static_cast<unsigned char>(character) < ' ';
                                 }),
            "no control character is printed");
    return 0;
}

#include "text/DiskutilText.h"
#include "text/FileSystemNames.h"
#include "text/Words.h"

#include <fmt/format.h>

#include <iterator>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace brindle::tools {
namespace {

// The type GUIDs that the platform prints for what lies in an APFS container.
constexpr std::string_view kApfsContainerType = "EF57347C-0000-11AA-AA11-00306543ECAC";
constexpr std::string_view kApfsVolumeType = "41504653-0000-11AA-AA11-00306543ECAC";

constexpr std::string_view yesOrNo(bool yes)
{
    return yes ? "Yes" : "No";
}

/// Lines of labels and values, in groups parted by an empty line.
class Facts {
public:
    /// Adds nothing when the value is empty. The value may be raw: it stays within its line.
    void add(std::string_view label, std::string_view value)
    {
        if (value.empty())
            return;
        if (m_atGap && !m_text.empty())
            m_text += '\n';
        m_atGap = false;
        fmt::format_to(std::back_inserter(m_text), "   {:<26} {}\n", fmt::format("{}:", label), printable(value));
    }

    void gap() { m_atGap = true; }

    [[nodiscard]] std::string take() { return std::move(m_text); }

private:
    std::string m_text;
    bool m_atGap = false;
};

/// What the labels tell, whichever kind of device it is.
struct Described {
    std::string identifier;
    std::string node;
    std::string whole; ///< The identifier of the whole disk; the own one for such a disk.
    std::string mediaName;
    std::string type; ///< Of the table of a whole disk, else of the entry in the table.
    std::string uuid;
    std::uint64_t sizeBytes = 0;
    std::optional<Volume> volume;
};

/// The disk that the device is or lies on; a container whose store isn't there has none.
const Disk &diskOf(const Device &device)
{
    static const Disk kNone;
    return device.disk ? *device.disk : kNone;
}

std::optional<Volume> volumeOf(const std::optional<Volume> &own, const Mount *mount)
{
    // What is mounted tells more than the encryption or the volume group that carries it.
    return mount && mount->volume ? mount->volume : own;
}

Described described(const Device &device, const Disk &disk)
{
    if (device.apfsVolume) {
        return {
            .identifier = device.apfsVolume->identifier,
            .whole = device.container->identifier,
            .type = std::string(kApfsVolumeType),
            .uuid = device.apfsVolume->uuid,
            .sizeBytes = device.container->sizeBytes,
            .volume = Volume{
                .fileSystem = "apfs", .version = {}, .name = device.apfsVolume->name, .uuid = device.apfsVolume->uuid}};
    }
    if (device.container) {
        return {.identifier = device.container->identifier,
                .whole = device.container->identifier,
                .mediaName = disk.mediaName,
                .type = std::string(kApfsContainerType),
                .sizeBytes = device.container->sizeBytes};
    }
    if (device.partition) {
        return {.identifier = device.partition->identifier,
                .node = device.partition->node,
                .whole = disk.identifier,
                .type = device.partition->type,
                .uuid = device.partition->uuid,
                .sizeBytes = device.partition->sizeBytes,
                .volume = volumeOf(device.partition->volume, device.mount)};
    }
    return {.identifier = disk.identifier,
            .node = disk.node,
            .whole = disk.identifier,
            .mediaName = disk.mediaName,
            .type = disk.scheme.empty() ? "None" : disk.scheme,
            .sizeBytes = disk.sizeBytes,
            .volume = volumeOf(disk.volume, device.mount)};
}

std::string_view smartText(Smart smart)
{
    switch (smart) {
    case Smart::verified:
        return "Verified";
    case Smart::failing:
        return "Failing";
    case Smart::notSupported:
        break;
    }
    return "Not Supported";
}

std::string exactSizeText(std::uint64_t bytes)
{
    return fmt::format("{} ({} Bytes) (exactly {} 512-Byte-Units)", sizeText(bytes), bytes, bytes / 512);
}

void addVolume(Facts &text, const std::optional<Volume> &volume, const Mount *mount)
{
    if (volume)
        text.add("Volume Name", volume->name);
    if (volume || mount)
        text.add("Mounted", yesOrNo(mount));
    if (mount)
        text.add("Mount Point", mount->mountPoint);
    text.gap();
}

void addFileSystem(Facts &text, const std::optional<Volume> &volume)
{
    if (volume) {
        const FileSystemNames names = fileSystemNames(*volume);
        text.add("File System Personality", names.personality);
        text.add("Type (Bundle)", names.bundle);
    }
    text.gap();
}

void addApfs(Facts &text, const Device &device)
{
    if (!device.container)
        return;
    text.add("APFS Container", device.container->identifier);
    text.add("APFS Physical Store", device.container->store);
}

} // namespace

std::string infoText(const Device &device)
{
    const Disk &disk = diskOf(device);
    const Described facts = described(device, disk);
    const bool isWhole = facts.whole == facts.identifier;
    Facts text;
    text.add("Device Identifier", facts.identifier);
    text.add("Device Node", facts.node.empty() ? "/dev/" + facts.identifier : facts.node);
    text.add("Whole", yesOrNo(isWhole));
    text.add("Part of Whole", facts.whole);
    text.add("Device / Media Name", facts.mediaName);
    text.gap();
    addVolume(text, facts.volume, device.mount);
    text.add(isWhole ? "Content (IOContent)" : "Partition Type", facts.type);
    addFileSystem(text, facts.volume);
    text.add("Protocol", disk.protocol);
    if (isWhole)
        text.add("SMART Status", smartText(disk.smart));
    text.add("Volume UUID", facts.volume ? upperCased(facts.volume->uuid) : std::string());
    text.add("Disk / Partition UUID", upperCased(facts.uuid));
    text.gap();
    text.add("Disk Size", exactSizeText(facts.sizeBytes));
    text.add("Device Block Size", fmt::format("{} Bytes", disk.blockBytes));
    text.gap();
    text.add("Read-Only Media", yesOrNo(disk.isReadOnly));
    text.add("Device Location", disk.isExternal ? "External" : "Internal");
    text.add("Removable Media", yesOrNo(disk.isRemovable));
    text.add("Solid State", yesOrNo(disk.isSolidState));
    text.add("TRIM Support", yesOrNo(disk.supportsTrim));
    text.gap();
    addApfs(text, device);
    return text.take();
}

} // namespace brindle::tools

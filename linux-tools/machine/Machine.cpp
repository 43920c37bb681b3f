#include "machine/Machine.h"

#include "inventory/Identifier.h"
#include "machine/JsonObject.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <limits>
#include <set>
#include <utility>

namespace brindle::tools {
namespace {

using namespace std::string_view_literals;

constexpr std::uint64_t kFormat = 1;
constexpr std::uint64_t kLargestNextDisk = std::numeric_limits<std::uint32_t>::max();
constexpr std::size_t kLongestFileName = 255;

constexpr std::array kSmartNames{
    std::pair{"notSupported"sv, Smart::notSupported},
    std::pair{"verified"sv, Smart::verified},
    std::pair{"failing"sv, Smart::failing},
};

/// Whether \a name can be a folder's: one step of a path that leads nowhere else.
bool isFolderName(std::string_view name)
{
    const auto isOdd = [](char character) { return character == '/' || static_cast<unsigned char>(character) < 0x20; };
    return !name.empty() && name.size() <= kLongestFileName && name != "." && name != ".." &&
           std::ranges::none_of(name, isOdd);
}

bool isMountPoint(std::string_view path)
{
    constexpr std::string_view kVolumes = "Volumes/";
    if (path.starts_with('/'))
        return path.find('\0') == std::string_view::npos;
    return path.starts_with(kVolumes) && isFolderName(path.substr(kVolumes.size()));
}

/// Reads one machine and remembers what must not come twice.
class Reader {
public:
    Machine read(const JsonObject &root)
    {
        if (root.numberOr("format", kFormat) != kFormat)
            root.refuse("format", fmt::format("must be {}", kFormat));
        m_machine.password = root.text("password");
        m_machine.nextDisk = root.number("nextDisk");
        if (m_machine.nextDisk > kLargestNextDisk)
            root.refuse("nextDisk", fmt::format("must be at most {}", kLargestNextDisk));
        if (!root.object("hardware")) // read by those alone who tell of it
            root.refuse("hardware", "the key is missing");
        for (const JsonObject &disk : root.objects("disks"))
            m_machine.inventory.disks.push_back(readDisk(disk, &m_machine.inventory.containers));
        for (const JsonObject &mount : root.objectsIfPresent("mounts"))
            m_machine.inventory.mounts.push_back(readMount(mount));
        for (const JsonObject &disk : root.objectsIfPresent("shelf"))
            m_machine.shelf.push_back(readDisk(disk, nullptr));
        for (const JsonObject &variable : root.objectsIfPresent("nvram"))
            m_machine.nvram.push_back({variable.text("guid"), variable.text("name"), variable.bytes("value")});
        std::ranges::sort(m_machine.inventory.disks, {},
                          [](const Disk &disk) { return parseIdentifier(disk.identifier)->disk; });
        return std::move(m_machine);
    }

private:
    Disk readDisk(const JsonObject &object, std::vector<ApfsContainer> *containers)
    {
        Disk disk;
        disk.identifier = readDiskIdentifier(object);
        m_machine.carriers[disk.identifier].holder = object.textOr("holder", "");
        disk.mediaName = object.text("mediaName");
        disk.scheme = object.textOr("scheme", "");
        disk.protocol = object.text("protocol");
        disk.isImage = object.flag("isImage");
        disk.isExternal = object.flag("isExternal");
        disk.isRemovable = object.flag("isRemovable");
        disk.isReadOnly = object.flag("isReadOnly");
        disk.isSolidState = object.flag("isSolidState");
        disk.supportsTrim = object.flag("supportsTrim");
        disk.smart = readSmart(object);
        disk.sizeBytes = object.number("sizeBytes");
        disk.blockBytes = object.numberOr("blockBytes", disk.blockBytes);
        disk.volume = readVolume(object, disk.identifier, disk.sizeBytes, "");
        for (const JsonObject &partition : object.objectsIfPresent("partitions"))
            disk.partitions.push_back(readPartition(partition, disk.identifier, containers));
        return disk;
    }

    Partition readPartition(const JsonObject &object, const std::string &disk, std::vector<ApfsContainer> *containers)
    {
        Partition partition;
        partition.identifier = readPartitionIdentifier(object, disk);
        m_machine.carriers[partition.identifier].holder = object.textOr("holder", "");
        partition.type = object.text("type");
        partition.uuid = object.textOr("uuid", "");
        partition.offsetBytes = object.number("offsetBytes");
        partition.sizeBytes = object.number("sizeBytes");
        partition.volume = readVolume(object, partition.identifier, partition.sizeBytes, partition.uuid);
        if (const auto apfs = object.object("apfs")) {
            ApfsContainer container = readContainer(*apfs, partition);
            partition.container = container.identifier;
            if (containers)
                containers->push_back(std::move(container));
        }
        return partition;
    }

    ApfsContainer readContainer(const JsonObject &object, const Partition &store)
    {
        ApfsContainer container;
        container.identifier = readDiskIdentifier(object);
        container.store = store.identifier;
        container.sizeBytes = store.sizeBytes;
        for (const JsonObject &each : object.objects("volumes")) {
            container.volumes.push_back({.identifier = readPartitionIdentifier(each, container.identifier),
                                         .name = each.bytes("name"),
                                         .uuid = each.text("uuid"),
                                         .sizeBytes = each.number("sizeBytes")});
            const ApfsVolume &volume = container.volumes.back();
            readCarrier(each, volume.identifier, container.sizeBytes, volume.uuid);
        }
        shareSpace(container);
        return container;
    }

    /// The volumes of a container have one free space.
    void shareSpace(const ApfsContainer &container)
    {
        std::uint64_t availableBytes = container.sizeBytes;
        for (const ApfsVolume &volume : container.volumes)
            availableBytes -= std::min(availableBytes, volume.sizeBytes);
        for (const ApfsVolume &volume : container.volumes) {
            std::optional<Space> &space = m_machine.carriers[volume.identifier].space;
            if (!space)
                space = Space{
                    .totalBytes = container.sizeBytes, .usedBytes = volume.sizeBytes, .availableBytes = availableBytes};
        }
    }

    std::optional<Volume> readVolume(const JsonObject &carrier, const std::string &identifier, std::uint64_t sizeBytes,
                                     const std::string &content)
    {
        const auto object = carrier.object("volume");
        if (!object)
            return std::nullopt;
        Volume volume{.fileSystem = object->text("fileSystem"),
                      .version = object->textOr("version", ""),
                      .name = object->bytes("name"),
                      .uuid = object->textOr("uuid", "")};
        if (volume.fileSystem.empty())
            object->refuse("fileSystem", "must not be empty");
        readCarrier(*object, identifier, sizeBytes, content.empty() ? volume.uuid : content);
        return volume;
    }

    DescribedCarrier &readCarrier(const JsonObject &object, const std::string &identifier, std::uint64_t sizeBytes,
                                  const std::string &content)
    {
        DescribedCarrier &carrier = m_machine.carriers[identifier];
        carrier.sizeBytes = sizeBytes;
        carrier.content = object.textOr("content", content);
        if (!isFolderName(carrier.content))
            object.refuse("content", "must be the name of a folder");
        if (!m_contents.insert(carrier.content).second)
            object.refuse("content", fmt::format("\"{}\" belongs to another volume", carrier.content));
        if (const auto space = object.object("space")) {
            carrier.space = Space{.totalBytes = sizeBytes,
                                  .usedBytes = space->number("usedBytes"),
                                  .availableBytes = 0,
                                  .usedNodes = space->numberOr("usedNodes", 0),
                                  .freeNodes = space->numberOr("freeNodes", 0)};
            const std::uint64_t free = sizeBytes - std::min(sizeBytes, carrier.space->usedBytes);
            carrier.space->availableBytes = space->numberOr("availableBytes", free);
        }
        return carrier;
    }

    Mount readMount(const JsonObject &object)
    {
        Mount mount;
        mount.carrier = object.text("carrier");
        const auto carrier = m_machine.carriers.find(mount.carrier);
        if (carrier == m_machine.carriers.end() || carrier->second.content.empty())
            object.refuse("carrier", "must be the identifier of a volume");
        if (!m_mounted.insert(mount.carrier).second)
            object.refuse("carrier", "is mounted already");
        mount.mountPoint = object.text("mountPoint");
        if (!isMountPoint(mount.mountPoint))
            object.refuse("mountPoint", "must be \"Volumes/NAME\" or begin with \"/\"");
        if (!m_mountPoints.insert(mount.mountPoint).second)
            object.refuse("mountPoint", "is taken by another volume");
        mount.isReadOnly = object.flag("isReadOnly");
        if (const auto dissenter = object.object("dissenter"))
            carrier->second.dissenter = Dissenter{dissenter->number("pid"), dissenter->text("program")};
        return mount;
    }

    std::string readDiskIdentifier(const JsonObject &object)
    {
        std::string identifier = object.text("identifier");
        const auto parsed = parseIdentifier(identifier);
        if (!parsed || identifier != diskIdentifier(parsed->disk))
            object.refuse("identifier", R"(must be "disk" and a number)");
        if (parsed->disk >= m_machine.nextDisk)
            object.refuse("identifier", "must have a number below \"nextDisk\"");
        return once(object, std::move(identifier));
    }

    std::string readPartitionIdentifier(const JsonObject &object, const std::string &disk)
    {
        std::string identifier = object.text("identifier");
        const auto parsed = parseIdentifier(identifier);
        if (!parsed || !parsed->partition || identifier != partitionIdentifier(disk, *parsed->partition))
            object.refuse("identifier", fmt::format("must be \"{}s\" and a number", disk));
        return once(object, std::move(identifier));
    }

    std::string once(const JsonObject &object, std::string identifier)
    {
        if (!m_identifiers.insert(identifier).second)
            object.refuse("identifier", "is another disk's");
        return identifier;
    }

    static Smart readSmart(const JsonObject &object)
    {
        const std::string name = object.textOr("smart", kSmartNames.front().first);
        const auto found =
            std::ranges::find(kSmartNames, std::string_view(name), &decltype(kSmartNames)::value_type::first);
        if (found == kSmartNames.end())
            object.refuse("smart", R"(must be "verified", "failing" or "notSupported")");
        return found->second;
    }

    Machine m_machine;
    std::set<std::string> m_identifiers;
    std::set<std::string> m_contents;
    std::set<std::string> m_mounted;
    std::set<std::string> m_mountPoints;
};

} // namespace

Machine readMachine(const nlohmann::ordered_json &json)
{
    return Reader().read(JsonObject(json, ""));
}

} // namespace brindle::tools

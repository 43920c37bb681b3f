#include "machine/MachineEdit.h"

#include "inventory/Identifier.h"
#include "machine/Uuid.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace brindle::tools {
namespace {

using Json = nlohmann::ordered_json;

constexpr std::uint64_t kMiB = 1024 * 1024;
constexpr std::uint64_t kEfiOffsetBytes =
    40 * 512; // the platform's: right behind the table of 34 blocks, aligned to 4096
constexpr std::uint64_t kEfiBytes = 200 * kMiB;

bool isCalled(const Json &object, std::string_view identifier)
{
    return object.at("identifier").get_ref<const std::string &>() == identifier;
}

/// The first object of the list under \a key that \a find finds something in; null for none or without the key.
template <typename Find>
Json *findIn(Json &owner, const char *key, Find find)
{
    const auto list = owner.find(key);
    if (list == owner.end())
        return nullptr;
    for (Json &each : *list) {
        if (Json *const found = find(each))
            return found;
    }
    return nullptr;
}

/// The next identifier of a disk, which no disk had before.
std::string takeIdentifier(Json &machine)
{
    const auto number = machine.at("nextDisk").get<std::uint64_t>();
    machine["nextDisk"] = number + 1;
    return diskIdentifier(number);
}

/// Renames \a object and, by the same prefix, what lies on it: disk3 to disk9 makes disk3s1 disk9s1.
void renumber(Json &object, const char *parts, const std::string &newIdentifier)
{
    const auto oldIdentifier = object.at("identifier").get<std::string>();
    object["identifier"] = newIdentifier;
    const auto list = object.find(parts);
    if (list == object.end())
        return;
    for (Json &part : *list)
        part["identifier"] = newIdentifier + part.at("identifier").get<std::string>().substr(oldIdentifier.size());
}

Json takeOut(Json &list, std::string_view identifier)
{
    const auto found = std::ranges::find_if(list, [&](const Json &each) { return isCalled(each, identifier); });
    Json object = std::move(*found);
    list.erase(found);
    return object;
}

Json apfsContainer(Json &machine, const std::string &label)
{
    const std::string container = takeIdentifier(machine);
    const Json volume{
        {"identifier", partitionIdentifier(container, 1)}, {"name", label}, {"uuid", makeUuid()}, {"sizeBytes", kMiB}};
    return Json{{"identifier", container}, {"volumes", Json::array({volume})}};
}

Json freshVolume(const Format &format, const std::string &label)
{
    // A folder of its own, so that nothing of the old files comes back.
    return Json{{"fileSystem", format.fileSystem},
                {"version", format.version},
                {"name", label},
                {"uuid", makeVolumeId(format.fileSystem)},
                {"content", makeUuid()}};
}

Json freshPartition(const std::string &identifier, std::string_view type, std::uint64_t offset, std::uint64_t size)
{
    return Json{
        {"identifier", identifier}, {"type", type}, {"uuid", makeUuid()}, {"offsetBytes", offset}, {"sizeBytes", size}};
}

/// The APFS volume with the identifier, or what \a ofCarrier gives of the disk or partition with it.
Json *find(Json &machine, std::string_view identifier, Json *(*ofCarrier)(Json &carrier))
{
    const auto volume = [&](Json &object) { return isCalled(object, identifier) ? &object : nullptr; };
    const auto partition = [&](Json &object) -> Json * {
        if (isCalled(object, identifier))
            return ofCarrier(object);
        const auto apfs = object.find("apfs");
        return apfs == object.end() ? nullptr : findIn(*apfs, "volumes", volume);
    };
    const auto disk = [&](Json &object) {
        return isCalled(object, identifier) ? ofCarrier(object) : findIn(object, "partitions", partition);
    };
    return findIn(machine, "disks", disk);
}

} // namespace

Json *findObject(Json &machine, std::string_view identifier)
{
    return find(machine, identifier, [](Json &carrier) { return &carrier; });
}

Json *findVolume(Json &machine, std::string_view identifier)
{
    return find(machine, identifier, [](Json &carrier) {
        const auto volume = carrier.find("volume");
        return volume == carrier.end() ? nullptr : &*volume;
    });
}

void removeMount(Json &machine, std::string_view carrier)
{
    const auto mounts = machine.find("mounts");
    if (mounts == machine.end())
        return;
    auto &list = mounts->get_ref<Json::array_t &>();
    std::erase_if(list, [&](const Json &mount) { return mount.at("carrier") == carrier; });
}

void addMount(Json &machine, const std::string &carrier, const std::string &mountPoint)
{
    machine["mounts"].push_back(Json{{"carrier", carrier}, {"mountPoint", mountPoint}});
}

void setName(Json &volume, const std::string &label)
{
    volume.erase("nameHex");
    volume["name"] = label;
}

std::string format(Json &machine, Json &carrier, const Format &format, const std::string &label)
{
    const bool isApfs = format.fileSystem == "apfs";
    carrier["volume"] = freshVolume(format, isApfs ? std::string() : label);
    carrier.erase("apfs");
    if (!isApfs)
        return carrier.at("identifier").get<std::string>();
    carrier["apfs"] = apfsContainer(machine, label);
    return carrier["apfs"]["volumes"][0]["identifier"].get<std::string>();
}

void renew(Json &apfsVolume, const std::string &label)
{
    setName(apfsVolume, label);
    apfsVolume["uuid"] = makeUuid();
    apfsVolume["sizeBytes"] = kMiB;
    apfsVolume["content"] = makeUuid();
    apfsVolume.erase("space");
}

Json &makeTable(Json &disk, const Format &format)
{
    const auto identifier = disk.at("identifier").get<std::string>();
    const auto sizeBytes = disk.at("sizeBytes").get<std::uint64_t>();
    const std::uint64_t start = (kEfiOffsetBytes + kEfiBytes + kMiB - 1) / kMiB * kMiB;
    const std::uint64_t end = sizeBytes / kMiB * kMiB - kMiB; // the second copy of the table lies behind it
    Json efi = freshPartition(partitionIdentifier(identifier, 1), "EFI", kEfiOffsetBytes, kEfiBytes);
    efi["volume"] = freshVolume(*findFormat("FAT32"), "EFI");
    Json data = freshPartition(partitionIdentifier(identifier, 2), format.gptType, start, end - start);
    disk.erase("volume");
    disk["scheme"] = "GUID_partition_scheme";
    disk["partitions"] = Json::array({std::move(efi), std::move(data)});
    return disk["partitions"][1];
}

void unplug(Json &machine, std::string_view identifier)
{
    machine["shelf"].push_back(takeOut(machine.at("disks"), identifier));
}

std::string plug(Json &machine, std::string_view identifier)
{
    Json disk = takeOut(machine.at("shelf"), identifier);
    renumber(disk, "partitions", takeIdentifier(machine));
    const auto partitions = disk.find("partitions");
    if (partitions != disk.end()) {
        for (Json &partition : *partitions) {
            const auto apfs = partition.find("apfs");
            if (apfs != partition.end())
                renumber(*apfs, "volumes", takeIdentifier(machine));
        }
    }
    auto newIdentifier = disk.at("identifier").get<std::string>();
    machine.at("disks").push_back(std::move(disk));
    return newIdentifier;
}

} // namespace brindle::tools

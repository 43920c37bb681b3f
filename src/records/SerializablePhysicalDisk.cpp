#include "records/SerializablePhysicalDisk.h"

#include "base/Error.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <limits>
#include <type_traits>
#include <utility>

namespace brindle {

namespace {

using nlohmann::json;
using nlohmann::ordered_json;

/// Shows each field of a partition, with its key, to \a visit: the one table that writing and reading share.
template <typename Partition, typename Visitor>
    requires std::is_same_v<std::remove_const_t<Partition>, SerializableEFIPartition>
void visitFields(Partition &partition, Visitor &&visit)
{
    visit("identifier", partition.identifier);
    visit("mediaUUID", partition.mediaUUID);
    visit("isMounted", partition.isMounted);
    visit("mountPoint", partition.mountPoint);
    visit("volumeName", partition.volumeName);
}

template <typename Disk, typename Visitor>
    requires std::is_same_v<std::remove_const_t<Disk>, SerializablePhysicalDisk>
void visitFields(Disk &disk, Visitor &&visit)
{
    visit("identifier", disk.identifier);
    visit("mediaUUID", disk.mediaUUID);
    visit("name", disk.name);
    visit("size", disk.size);
    visit("fileSystem", disk.fileSystem);
    visit("mountPoint", disk.mountPoint);
    visit("volumeName", disk.volumeName);
    visit("isRemovable", disk.isRemovable);
    visit("isWritable", disk.isWritable);
    visit("efiPartitions", disk.efiPartitions);
    visit("diskType", disk.diskType);
    visit("isBootDisk", disk.isBootDisk);
    visit("hasMacOS", disk.hasMacOS);
    visit("hasOpenCore", disk.hasOpenCore);
    visit("hasClover", disk.hasClover);
    visit("hasWindows", disk.hasWindows);
    visit("hasLinux", disk.hasLinux);
    visit("hasExFAT", disk.hasExFAT);
    visit("isDiskImage", disk.isDiskImage);
    visit("totalSpaceBytes", disk.totalSpaceBytes);
    visit("usedSpaceBytes", disk.usedSpaceBytes);
    visit("smartStatus", disk.smartStatus);
    visit("isSolidState", disk.isSolidState);
    visit("trimSupported", disk.trimSupported);
    visit("busProtocol", disk.busProtocol);
}

template <typename Record>
ordered_json encodeAll(const std::vector<Record> &records);

/// Writes the fields that it is shown, each key once, into the members of an object.
struct Encoder {
    ordered_json::object_t members;

    /// Room for as many fields as a disk has: a list of members that grows copies all its keys.
    Encoder() { members.reserve(25); }

    template <typename Value>
    void operator()(const char *key, const Value &value)
    {
        members.emplace_back(key, value);
    }

    template <typename Value>
    void operator()(const char *key, const std::optional<Value> &value)
    {
        if (value)
            members.emplace_back(key, *value);
    }

    void operator()(const char *key, const std::vector<SerializableEFIPartition> &partitions)
    {
        members.emplace_back(key, encodeAll(partitions));
    }
};

template <typename Record>
ordered_json encodeAll(const std::vector<Record> &records)
{
    ordered_json array = ordered_json::array();
    for (const Record &record : records) {
        Encoder encoder;
        visitFields(record, encoder);
        array.push_back(std::move(encoder.members));
    }
    return array;
}

[[noreturn]] void fail(DiskDecodingError code, std::string description)
{
    throw Error("DiskDecoding", static_cast<int>(code), std::move(description));
}

template <typename Record>
std::vector<Record> decodeAll(const json &array, const std::string &recordName);

/// Fills the fields that it is shown from an object. The place names the object in errors.
struct Decoder {
    const json &object;
    std::string place;

    template <typename Value>
    void operator()(const char *key, Value &value) const
    {
        const json *present = find(key);
        if (!present)
            fail(DiskDecodingError::missingKey, fmt::format("{}: the key \"{}\" is missing", place, key));
        read(key, *present, value);
    }

    template <typename Value>
    void operator()(const char *key, std::optional<Value> &value) const
    {
        if (const json *present = find(key))
            read(key, *present, value.emplace());
    }

private:
    const json *find(const char *key) const
    {
        const auto found = object.find(key);
        return found == object.end() || found->is_null() ? nullptr : &*found;
    }

    void require(bool isRightType, const char *key, std::string_view wanted) const
    {
        if (!isRightType)
            fail(DiskDecodingError::wrongType, fmt::format("{}: the key \"{}\" is not {}", place, key, wanted));
    }

    void read(const char *key, const json &present, std::string &value) const
    {
        require(present.is_string(), key, "a text");
        value = present.get_ref<const std::string &>();
    }

    void read(const char *key, const json &present, bool &value) const
    {
        require(present.is_boolean(), key, "true or false");
        value = present.get<bool>();
    }

    void read(const char *key, const json &present, std::int64_t &value) const
    {
        // The parser keeps an integer above the signed range as unsigned, and one beyond 64 bits as a real number.
        constexpr auto kLargest = static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max());
        require(present.is_number_unsigned() ? present.get<std::uint64_t>() <= kLargest : present.is_number_integer(),
                key, "an integer of 64 bits");
        value = present.get<std::int64_t>();
    }

    void read(const char *key, const json &present, std::vector<SerializableEFIPartition> &value) const
    {
        require(present.is_array(), key, "a list");
        value = decodeAll<SerializableEFIPartition>(present, place + ", EFI partition");
    }
};

template <typename Record>
std::vector<Record> decodeAll(const json &array, const std::string &recordName)
{
    std::vector<Record> records;
    for (const json &object : array) {
        const std::string place = fmt::format("{} {}", recordName, records.size());
        if (!object.is_object())
            fail(DiskDecodingError::wrongType, place + " is not an object");
        visitFields(records.emplace_back(), Decoder{object, place});
    }
    return records;
}

} // namespace

std::string encodeDisks(const std::vector<SerializablePhysicalDisk> &disks, JSONLayout layout)
{
    const int indent = layout == JSONLayout::Indented ? 2 : -1;
    return encodeAll(disks).dump(indent, ' ', false, ordered_json::error_handler_t::replace);
}

std::vector<SerializablePhysicalDisk> decodeDisks(std::string_view text)
{
    const json array = json::parse(text, nullptr, /*allow_exceptions=*/false);
    if (array.is_discarded())
        fail(DiskDecodingError::notJSON, "the disks are not JSON");
    if (!array.is_array())
        fail(DiskDecodingError::wrongType, "the disks are not a list");
    return decodeAll<SerializablePhysicalDisk>(array, "disk");
}

} // namespace brindle

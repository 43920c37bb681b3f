#include "records/FindDisk.h"

#include <algorithm>

namespace brindle {

namespace {

template <typename Record>
const Record *found(const std::vector<Record> &records, std::string_view identifier)
{
    const auto record = std::ranges::find(records, identifier, &Record::identifier);
    return record == records.end() ? nullptr : &*record;
}

} // namespace

const PhysicalDisk *findDisk(const std::vector<PhysicalDisk> &disks, std::string_view identifier)
{
    return found(disks, identifier);
}

const PhysicalDisk *findDiskOfEFIPartition(const std::vector<PhysicalDisk> &disks, std::string_view identifier)
{
    const auto disk =
        std::ranges::find_if(disks, [&](const PhysicalDisk &each) { return findEFIPartition(each, identifier); });
    return disk == disks.end() ? nullptr : &*disk;
}

const EFIPartition *findEFIPartition(const PhysicalDisk &disk, std::string_view identifier)
{
    return found(disk.efiPartitions, identifier);
}

const EFIPartition *findEFIPartition(const std::vector<PhysicalDisk> &disks, std::string_view identifier)
{
    const PhysicalDisk *const disk = findDiskOfEFIPartition(disks, identifier);
    return disk ? findEFIPartition(*disk, identifier) : nullptr;
}

} // namespace brindle

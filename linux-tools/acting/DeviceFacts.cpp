#include "acting/DeviceFacts.h"

namespace brindle::tools {

bool isWholeWithTable(const Device &device)
{
    return !device.partition && !device.container && !device.disk->scheme.empty();
}

bool isEfi(const Device &device)
{
    return device.partition && !device.container && device.partition->type == "EFI";
}

const Volume *volumeOf(const Device &device)
{
    if (device.container)
        return nullptr;
    const auto &volume = device.partition ? device.partition->volume : device.disk->volume;
    return volume ? &*volume : nullptr;
}

std::string nameOf(const Device &device)
{
    const Volume *const volume = volumeOf(device);
    if (volume)
        return volume->name;
    return device.apfsVolume ? device.apfsVolume->name : std::string();
}

std::string fileSystemOf(const Device &device)
{
    const Volume *const volume = volumeOf(device);
    if (volume)
        return volume->fileSystem;
    return device.apfsVolume ? "apfs" : "";
}

std::string typeFor(const Device &device, const Format &format)
{
    if (isEfi(device))
        return device.partition->type;
    return std::string(device.disk->scheme == "GUID_partition_scheme" ? format.gptType : format.mbrType);
}

} // namespace brindle::tools

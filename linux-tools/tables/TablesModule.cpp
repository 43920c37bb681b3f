#include "kernel/TablesModule.h"

#include <cerrno>
#include <memory>

#include <libfdisk/libfdisk.h>

namespace {

using Context = std::unique_ptr<fdisk_context, decltype(&fdisk_unref_context)>;
using Partition = std::unique_ptr<fdisk_partition, decltype(&fdisk_unref_partition)>;
using Type = std::unique_ptr<fdisk_parttype, decltype(&fdisk_unref_parttype)>;

Context openImage(int image, unsigned sectorBytes)
{
    Context context(fdisk_new_context(), fdisk_unref_context);
    if (!context)
        return context;
    fdisk_disable_dialogs(context.get(), 1);
    fdisk_save_user_sector_size(context.get(), sectorBytes, sectorBytes);
    if (fdisk_assign_device_by_fd(context.get(), image, "disk", 0) != 0)
        context.reset();
    return context;
}

Type typeOf(fdisk_context *context, const char *name)
{
    return {fdisk_label_parse_parttype(fdisk_get_label(context, nullptr), name), fdisk_unref_parttype};
}

int addPartition(fdisk_context *context, unsigned index, const BrindleExtent &extent, const char *typeName)
{
    const std::uint64_t sector = fdisk_get_sector_size(context);
    const Partition partition(fdisk_new_partition(), fdisk_unref_partition);
    const Type type = typeOf(context, typeName);
    if (!partition || !type)
        return -EINVAL;
    fdisk_partition_set_partno(partition.get(), index);
    fdisk_partition_set_start(partition.get(), extent.offsetBytes / sector);
    fdisk_partition_set_size(partition.get(), extent.sizeBytes / sector);
    fdisk_partition_set_type(partition.get(), type.get());
    return fdisk_add_partition(context, partition.get(), nullptr);
}

} // namespace

int brindleMakeTable(int image, unsigned sectorBytes, const BrindleExtent *extents, const char *const *types,
                     unsigned count)
{
    const Context context = openImage(image, sectorBytes);
    int error = context ? fdisk_create_disklabel(context.get(), "gpt") : -EIO;
    if (error == 0)
        error = fdisk_disable_dialogs(context.get(), 1);
    for (unsigned index = 0; error == 0 && index < count; ++index)
        error = addPartition(context.get(), index, extents[index], types[index]); // NOLINT: the interface is C's
    return error == 0 ? fdisk_write_disklabel(context.get()) : error;
}

int brindleSetPartitionType(int image, unsigned sectorBytes, unsigned number, const char *type)
{
    const Context context = openImage(image, sectorBytes);
    if (!context || !fdisk_has_label(context.get()) || number == 0)
        return -EINVAL;
    const Type wanted = typeOf(context.get(), type);
    const int error = wanted ? fdisk_set_partition_type(context.get(), number - 1, wanted.get()) : -EINVAL;
    return error == 0 ? fdisk_write_disklabel(context.get()) : error;
}

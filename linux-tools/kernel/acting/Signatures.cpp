#include "kernel/acting/Signatures.h"

#include "acting/Actor.h"

#include <memory>

#include <blkid/blkid.h>

namespace brindle::tools {

void wipeSignatures(int descriptor, bool keepsTable)
{
    constexpr int kMost = 1000; // A device whose writes get lost would show the same ones for ever.
    const std::unique_ptr<blkid_struct_probe, void (*)(blkid_probe)> probe(blkid_new_probe(), blkid_free_probe);
    if (!probe || blkid_probe_set_device(probe.get(), descriptor, 0, 0) != 0)
        throw ActionError("What lies on the device can't be read");
    blkid_probe_enable_superblocks(probe.get(), 1);
    blkid_probe_set_superblocks_flags(probe.get(), BLKID_SUBLKS_MAGIC | BLKID_SUBLKS_BADCSUM);
    blkid_probe_enable_partitions(probe.get(), keepsTable ? 0 : 1);
    if (!keepsTable)
        blkid_probe_set_partitions_flags(probe.get(), BLKID_PARTS_MAGIC | BLKID_PARTS_FORCE_GPT);
    for (int count = 0; blkid_do_probe(probe.get()) == 0; ++count) {
        if (count == kMost || blkid_do_wipe(probe.get(), 0) != 0)
            throw ActionError("What lay on the device can't be wiped");
    }
}

} // namespace brindle::tools

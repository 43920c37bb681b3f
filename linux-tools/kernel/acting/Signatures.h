#pragma once

namespace brindle::tools {

/// Wipes what libblkid knows a file system, a volume group, encryption or a table by, off the device that
/// \a descriptor is open on for writing. A table stays with \a keepsTable. \throws ActionError
void wipeSignatures(int descriptor, bool keepsTable);

} // namespace brindle::tools

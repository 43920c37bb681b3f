#pragma once

#include <chrono>
#include <string>
#include <vector>

namespace brindle::tools {

/// Has UDisks2, which desktops let their users ask without a password, unmount the volumes \a mounted ("sdb1") of a
/// disk and give it out: a loop device loses its file, a drive its medium, or else it is switched off. Gives what
/// UDisks2 says where it refuses, "" where it is done.
[[nodiscard]] std::string udisksEject(const std::string &busAddress, const std::string &device,
                                      const std::vector<std::string> &mounted, std::chrono::milliseconds limit);

} // namespace brindle::tools

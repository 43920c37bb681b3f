#pragma once

#include <optional>
#include <string>

namespace brindle {

/// Tells the user how a mount or an unmount ended. \a diskName is a stranger's text. Main thread only.
class MountNotifier {
public:
    virtual ~MountNotifier() = default;

    /// \a efiIdentifier is the partition's, so that what was mounted can be opened from there; absent where there is
    /// none.
    virtual void mountResult(const std::string &diskName, bool success,
                             const std::optional<std::string> &efiIdentifier) = 0;

    virtual void unmountResult(const std::string &diskName, bool success) = 0;
};

} // namespace brindle

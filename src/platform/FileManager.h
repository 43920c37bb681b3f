#pragma once

#include "platform/TreeComparison.h"

#include "base/CancellationToken.h"

#include <QCoroTask>

#include <string>
#include <vector>

namespace brindle {

/// Files and folders as a whole. Paths are absolute UTF-8. Main thread only; the work itself is done on another thread.
///
/// The tasks throw an Error whose sentence names the file that was in the way: of domain "POSIXError" with the system's
/// number, or one of CopyError. What was done by then stays done.
class FileManager {
public:
    virtual ~FileManager() = default;

    /// Something lies at \a path. A link to nothing counts as nothing; what the system can't tell, since the device
    /// fails, counts as something, so that nothing is taken for free that isn't.
    [[nodiscard]] virtual QCoro::Task<bool> fileExists(std::string path) = 0;

    /// What tells the volume that is mounted at \a mountPoint from every other, also from one that is mounted there
    /// later; empty where nothing is there.
    [[nodiscard]] virtual QCoro::Task<std::string> volumeAt(std::string mountPoint) = 0;

    /// The names in the folder, hidden ones too, in no order.
    [[nodiscard]] virtual QCoro::Task<std::vector<std::string>> contentsOfDirectory(std::string path) = 0;

    /// Copies \a from, a file or a folder with all that is beneath it, to \a to, which must not exist; returns when the
    /// whole copy is on the device.
    ///
    /// Times, permissions and extended attributes go with it as far as the file system of the target has them and the
    /// user may set them; the owner is the user, so that the set-user and set-group bits are left out. Links are copied
    /// as links, holes as holes. Throws for what the target can't hold: a link, a name, a size. A cancellation of
    /// \a token is seen between two pieces of work and throws CopyError::cancelled.
    virtual QCoro::Task<> copyItem(std::string from, std::string to, CancellationToken token = {}) = 0;

    /// Compares two folders with all that is beneath them: names, kinds, sizes, and the SHA-256 of each file's bytes.
    ///
    /// The second folder is read from its device, past what of it lies in memory, so that a copy is known to have got
    /// there. What can't be read is an error and no difference.
    [[nodiscard]] virtual QCoro::Task<TreeComparison> compareItems(std::string first, std::string second) = 0;

    /// Removes \a path, a file or a folder with all that is beneath it; a link and not what it leads to.
    virtual QCoro::Task<> removeItem(std::string path) = 0;
};

/// The codes of errors of the domain "CopyError": what no error number of the system says.
enum class CopyError {
    cancelled = 1,
    intoItself,      ///< The target lies within the folder that is copied.
    notCopyable,     ///< Neither a file, a folder nor a link.
    linkNotHeld,     ///< The file system of the target has no links.
    nameNotHeld,     ///< It can't hold the name.
    nameHeldAlready, ///< It takes the name for that of another file of the same folder.
};

inline constexpr char kCopyErrorDomain[] = "CopyError";

} // namespace brindle

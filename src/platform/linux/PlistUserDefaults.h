#pragma once

#include "platform/UserDefaults.h"
#include "platform/linux/MergedDefaults.h"

#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

class QFileSystemWatcher;

namespace brindle {

/// The user defaults in an XML property list that several processes share.
///
/// Changes are collected and written at the next turn of the event loop, at synchronize() or at the end of the store,
/// in one atomic replacement of the file that touches the changed keys alone: processes that write in turn lose
/// nothing. The file is readable by its user alone; a symbolic link in its place is followed. In the file a date has
/// whole seconds and texts are what XML allows (writePropertyList()); within the process every value stays exactly as
/// it was set.
///
/// A missing file is an empty store. What a read costs is one stat call, and the file is read again only when it has
/// changed. valueChanged() tells of other processes' changes too: from the first connection on the folder is watched,
/// without any wake-up while nothing happens in it.
///
/// A file that is truncated, of another format or not to be read is renamed to "<file>.damaged-<UTC time>", and the
/// store begins empty; damage that comes while the store is in use is left until the next write, which writes the last
/// good values. Of a file with values that can't be held, or a key that stands twice, a copy of such a name is kept
/// before the first write. As long as the file can be neither read nor renamed, or the disk is full, all values live in
/// memory.
class PlistUserDefaults final : public UserDefaults {
    Q_OBJECT

public:
    explicit PlistUserDefaults(std::filesystem::path file);
    ~PlistUserDefaults() override;

    /// "brindle/com.orlane.Brindle.plist" in the folder of the user's settings: $XDG_CONFIG_HOME, else ".config" in
    /// $HOME or, without that, in the home folder of the password database. A variable that is not an absolute path is
    /// ignored.
    [[nodiscard]] static std::filesystem::path defaultPath();

    [[nodiscard]] std::optional<PropertyValue> object(const std::string &key) const override;
    void set(const std::string &key, PropertyValue value) override;
    void remove(const std::string &key) override;
    std::optional<Error> synchronize() override;

protected:
    void connectNotify(const QMetaMethod &signal) override;

private:
    void change(const std::string &key, std::optional<PropertyValue> value);
    void watch();
    void announceForeignChanges();

    mutable std::mutex m_mutex; ///< Guards the two that follow.
    mutable MergedDefaults m_defaults;
    bool m_isWriteDue = false;
    std::unique_ptr<QFileSystemWatcher> m_watcher; ///< Of the store's own thread; none until somebody listens.
};

} // namespace brindle

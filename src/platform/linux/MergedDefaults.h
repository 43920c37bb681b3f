#pragma once

#include "platform/UserDefaults.h"
#include "platform/linux/DefaultsFile.h"

#include <filesystem>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace brindle {

/// The user defaults as one process sees them: what the shared file holds, with the process's own changes on top.
///
/// No function throws: what goes wrong is logged, each kind of failure once until a write goes well. Changes that can't
/// be written stay, count here, and are tried again at the next write. A file that is of no use is set aside, and as
/// long as that fails it is left as it is. Not thread-safe.
class MergedDefaults {
public:
    using Keys = std::set<std::string>;

    explicit MergedDefaults(std::filesystem::path file);

    [[nodiscard]] std::optional<PropertyValue> object(const std::string &key);

    /// Sets the value of \a key, or removes it; whether that changed anything.
    bool change(const std::string &key, std::optional<PropertyValue> value);

    /// Takes in what another process has written since the last look.
    void refresh();

    /// Brings the own changes into the file, and into nothing where there are none; what went wrong.
    std::optional<Error> write();

    /// The keys whose values were changed by others than this process since the last call; at first all keys.
    [[nodiscard]] Keys takeForeignChanges() { return std::exchange(m_foreignChanges, {}); }

    /// The folder in which the file is replaced.
    [[nodiscard]] std::filesystem::path folder() const { return m_file.folder(); }

private:
    void rescue(const DamagedFile &damage);
    PropertyValue::Dictionary readOrSetAside();
    void merge();
    void adopt(PropertyValue::Dictionary fileValues);
    void applyChanges(PropertyValue::Dictionary &values) const;
    void noteForeignChanges(const PropertyValue::Dictionary &newValues);
    void logOnce(const Error &failure, const std::string &line);

    DefaultsFile m_file;
    bool m_hasRead = false;
    bool m_isDamaged = false;           ///< The file that was last looked at.
    PropertyValue::Dictionary m_values; ///< What object() gives: the own changes are in it.
    Keys m_changedKeys;                 ///< Of the own changes that are not in the file yet.
    Keys m_foreignChanges;
    std::set<int> m_loggedFailures; ///< Error codes since the last write that went well.
};

} // namespace brindle

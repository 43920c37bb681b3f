#include "platform/linux/MergedDefaults.h"

#include "base/Log.h"
#include "platform/linux/PropertyListFile.h"

#include <utility>

namespace brindle {

namespace {

/// Whether the file can't tell the two apart: it holds a date only in whole seconds.
bool areSameInFile(const PropertyValue &one, const PropertyValue &other)
{
    return writePropertyList({{"Value", one}}) == writePropertyList({{"Value", other}});
}

} // namespace

MergedDefaults::MergedDefaults(std::filesystem::path file) : m_file(std::move(file)) {}

std::optional<PropertyValue> MergedDefaults::object(const std::string &key)
{
    refresh();
    const auto found = m_values.find(key);
    return found == m_values.end() ? std::nullopt : std::optional(found->second);
}

bool MergedDefaults::change(const std::string &key, std::optional<PropertyValue> value)
{
    if (object(key) == value)
        return false;
    if (value)
        m_values.insert_or_assign(key, *std::move(value));
    else
        m_values.erase(key);
    m_changedKeys.insert(key);
    return true;
}

void MergedDefaults::refresh()
{
    if (!m_file.hasChanged())
        return;
    try {
        adopt(m_file.read());
    } catch (const DamagedFile &damage) {
        m_isDamaged = true;
        // Later it may be an editor in the middle of saving: the values read before stand until a change is written.
        if (!m_hasRead)
            rescue(damage);
    } catch (const Error &failure) {
        logOnce(failure, fmt::format("⚠️ User defaults not read: {}", failure.localizedDescription()));
    }
}

std::optional<Error> MergedDefaults::write()
{
    if (m_changedKeys.empty())
        return std::nullopt;
    try {
        const FileDescriptor lock = m_file.lock();
        merge();
        return std::nullopt;
    } catch (const Error &failure) {
        logOnce(failure, fmt::format("⚠️ User defaults not written: {}", failure.localizedDescription()));
        return failure;
    }
}

void MergedDefaults::rescue(const DamagedFile &damage)
{
    try {
        const FileDescriptor lock = m_file.lock();
        adopt(readOrSetAside());
    } catch (const Error &failure) {
        logOnce(failure, fmt::format("⚠️ User defaults unreadable, kept in memory only: {} ({})",
                                     damage.localizedDescription(), failure.localizedDescription()));
    }
}

/// Under the lock: what the file holds, or, where it is of no use and therefore set aside, what it held before.
PropertyValue::Dictionary MergedDefaults::readOrSetAside()
{
    try {
        return m_file.read();
    } catch (const DamagedFile &damage) {
        const std::filesystem::path aside = m_file.setAside();
        Log::line("⚠️ User defaults unreadable, set aside as {}: {}", aside.string(), damage.localizedDescription());
        return m_values;
    }
}

/// Under the lock: brings the own changes into the file.
void MergedDefaults::merge()
{
    if (m_isDamaged || m_file.hasChanged())
        adopt(readOrSetAside());
    if (!m_file.isComplete())
        Log::line("⚠️ User defaults hold values that can't be kept, copied to {}", m_file.keepCopy().string());
    m_file.replace(writePropertyList(m_values));
    m_changedKeys.clear();
    m_loggedFailures.clear();
}

/// Makes \a fileValues what this process sees, with its exact values and its changes on top.
void MergedDefaults::adopt(PropertyValue::Dictionary fileValues)
{
    for (auto &[key, held] : fileValues) {
        const auto mine = m_values.find(key);
        if (mine != m_values.end() && areSameInFile(mine->second, held))
            held = mine->second;
    }
    applyChanges(fileValues);
    noteForeignChanges(fileValues);
    m_values = std::move(fileValues);
    m_hasRead = true;
    m_isDamaged = false;
}

void MergedDefaults::applyChanges(PropertyValue::Dictionary &values) const
{
    for (const std::string &key : m_changedKeys) {
        if (const auto mine = m_values.find(key); mine != m_values.end())
            values.insert_or_assign(key, mine->second);
        else
            values.erase(key);
    }
}

void MergedDefaults::noteForeignChanges(const PropertyValue::Dictionary &newValues)
{
    for (const auto &[key, value] : newValues) {
        if (const auto old = m_values.find(key); old == m_values.end() || old->second != value)
            m_foreignChanges.insert(key);
    }
    for (const auto &[key, value] : m_values) {
        if (!newValues.contains(key))
            m_foreignChanges.insert(key);
    }
}

void MergedDefaults::logOnce(const Error &failure, const std::string &line)
{
    if (m_loggedFailures.insert(failure.code()).second)
        Log::line("{}", line);
}

} // namespace brindle

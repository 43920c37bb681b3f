#include "platform/linux/MergedDefaults.h"

#include "base/Log.h"
#include "platform/linux/PropertyListFile.h"

#include <utility>

namespace brindle {

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
    m_fileForms.erase(key);
    m_changedKeys.insert(key);
    return true;
}

void MergedDefaults::refresh()
{
    if (!m_file.hasChanged())
        return;
    try {
        adopt(m_file.read().values);
    } catch (const DamagedFile &damage) {
        // Later it may be an editor in the middle of saving: what was read before stands until there is a change to
        // write.
        if (!m_hasRead)
            rescue(damage);
    } catch (const Error &failure) {
        logOnce(failure, fmt::format("⚠️ User defaults not read: {}", failure.localizedDescription()));
    }
}

void MergedDefaults::write()
{
    if (m_changedKeys.empty())
        return;
    try {
        const FileDescriptor lock = m_file.lock();
        merge();
    } catch (const Error &failure) {
        logOnce(failure, fmt::format("⚠️ User defaults not written: {}", failure.localizedDescription()));
    }
}

void MergedDefaults::rescue(const DamagedFile &damage)
{
    try {
        const FileDescriptor lock = m_file.lock();
        adopt(readOrSetAside().values);
    } catch (const Error &failure) {
        logOnce(failure, fmt::format("⚠️ User defaults unreadable, kept in memory only: {} ({})",
                                     damage.localizedDescription(), failure.localizedDescription()));
    }
}

/// Under the lock: what the file holds, or, where it is of no use and therefore set aside, what it held before.
DefaultsFile::Content MergedDefaults::readOrSetAside()
{
    try {
        return m_file.read();
    } catch (const DamagedFile &damage) {
        const std::filesystem::path aside = m_file.setAside();
        Log::line("⚠️ User defaults unreadable, set aside as {}: {}", aside.string(), damage.localizedDescription());
        return {.bytes = {}, .values = m_values};
    }
}

/// Under the lock: brings the own changes into the file.
void MergedDefaults::merge()
{
    DefaultsFile::Content content = readOrSetAside();
    applyChanges(content.values);
    const std::string bytes = writePropertyList(content.values);
    auto written = readPropertyList(bytes); // nothing takes the file's place that could not be read again
    if (const Error *flaw = std::get_if<Error>(&written))
        throw *flaw;
    if (bytes != content.bytes)
        m_file.replace(bytes);

    auto &fileValues = std::get<PropertyValue::Dictionary>(written);
    for (const std::string &key : std::exchange(m_changedKeys, {})) {
        const auto mine = m_values.find(key);
        const auto held = fileValues.find(key);
        if (mine != m_values.end() && held != fileValues.end() && mine->second != held->second)
            m_fileForms.insert_or_assign(key, held->second);
    }
    m_loggedFailures.clear();
    adopt(std::move(fileValues));
}

/// Makes \a fileValues what this process sees, with its exact values and its changes on top.
void MergedDefaults::adopt(PropertyValue::Dictionary fileValues)
{
    std::erase_if(m_fileForms, [&](const auto &form) {
        const auto held = fileValues.find(form.first);
        if (held == fileValues.end() || held->second != form.second)
            return true; // another process has written another value
        held->second = m_values.at(form.first);
        return false;
    });
    applyChanges(fileValues);
    noteForeignChanges(fileValues);
    m_values = std::move(fileValues);
    m_hasRead = true;
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

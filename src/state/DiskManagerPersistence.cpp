#include "state/DiskManager.h"

#include "base/DefaultsKeys.h"
#include "base/Error.h"
#include "base/Log.h"
#include "records/Preferences.h"
#include "records/SerializablePhysicalDisk.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <utility>

namespace brindle {

namespace {

PropertyValue::Data dataOf(std::string_view text)
{
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

std::string textOf(const PropertyValue::Data &data)
{
    return {reinterpret_cast<const char *>(data.data()), data.size()};
}

/// The disks that \a data holds in the persisted form; nullopt where it doesn't decode.
std::optional<std::vector<PhysicalDisk>> decodedDisks(const PropertyValue::Data &data)
{
    try {
        std::vector<PhysicalDisk> disks;
        for (const SerializablePhysicalDisk &serialized : decodeDisks(textOf(data)))
            disks.push_back(PhysicalDisk::fromSerialized(serialized));
        return disks;
    } catch (const Error &) {
        return std::nullopt;
    }
}

/// The members of \a array; nullopt where any of them is no text.
std::optional<std::set<std::string>> textsIn(const PropertyValue::Array &array)
{
    std::set<std::string> texts;
    for (const PropertyValue &element : array) {
        const auto *text = element.as<std::string>();
        if (!text)
            return std::nullopt;
        texts.insert(*text);
    }
    return texts;
}

} // namespace

std::optional<Scheduler::Date> DiskManager::lastRefreshTime() const
{
    return m_defaults.objectAs<PropertyValue::Date>(DefaultsKeys::kLastRefreshTime);
}

void DiskManager::persistState()
{
    m_defaults.set(DefaultsKeys::kPersistedDisks, dataOf(encodeDisks(m_disks)));
    m_defaults.set(DefaultsKeys::kPersistedExpandedDisks,
                   PropertyValue::Array(m_expandedDisks.begin(), m_expandedDisks.end()));
    Log::line("💾 Persisted disk state");
}

void DiskManager::restorePersistedState()
{
    if (isOn(m_defaults, DefaultsKeys::kIsModeSwitchRelaunch)) {
        Log::line("🔄 Mode switch detected — loading persisted disk state");
        restorePersistedDisks();
        m_defaults.remove(DefaultsKeys::kIsModeSwitchRelaunch);
    } else {
        Log::line("🚀 Fresh app launch — will scan disks");
    }
    const auto expanded = m_defaults.objectAs<PropertyValue::Array>(DefaultsKeys::kPersistedExpandedDisks);
    if (auto identifiers = expanded ? textsIn(*expanded) : std::nullopt)
        setExpandedDisks(std::move(*identifiers));
}

void DiskManager::restorePersistedDisks()
{
    const auto data = m_defaults.objectAs<PropertyValue::Data>(DefaultsKeys::kPersistedDisks);
    auto disks = data ? decodedDisks(*data) : std::nullopt;
    if (!disks)
        return;
    setDisks(std::move(*disks));
    updateEFIStates();
    setHasCompletedInitialScan(true);
    Log::line("📦 Loaded {} persisted disks from mode switch", m_disks.size());
}

} // namespace brindle

#include "state/AutoMountMarks.h"

#include "base/DefaultsKeys.h"
#include "records/Preferences.h"

namespace brindle {

AutoMountMarks autoMountMarks(const UserDefaults &defaults)
{
    const auto stored = readPreference(defaults, *findPreference(DefaultsKeys::kAutoMountDiskUUIDs));
    AutoMountMarks marks;
    for (const auto &[mediaUUID, name] : *stored->as<PropertyValue::Dictionary>())
        marks.emplace(mediaUUID, *name.as<std::string>());
    return marks;
}

void setAutoMountMarks(UserDefaults &defaults, const AutoMountMarks &marks)
{
    defaults.set(DefaultsKeys::kAutoMountDiskUUIDs, PropertyValue::Dictionary(marks.begin(), marks.end()));
}

} // namespace brindle

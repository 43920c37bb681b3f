#include "kernel/UdevRecord.h"

#include "text/LineReading.h"

#include <array>
#include <charconv>

namespace brindle::tools {
namespace {

struct Field {
    std::string_view key;
    std::string UdevRecord::*member;
};

constexpr std::array kFields{
    Field{"ID_BUS", &UdevRecord::bus},
    Field{"ID_PART_ENTRY_SCHEME", &UdevRecord::entryTable},
    Field{"ID_PART_ENTRY_TYPE", &UdevRecord::entryType},
    Field{"ID_PART_ENTRY_UUID", &UdevRecord::entryUuid},
    Field{"ID_PART_TABLE_TYPE", &UdevRecord::tableType},
    Field{"ID_MODEL_ENC", &UdevRecord::model},
};

struct VolumeField {
    std::string_view key;
    std::string Volume::*member;
};

constexpr std::array kVolumeFields{
    VolumeField{"ID_FS_TYPE", &Volume::fileSystem},
    VolumeField{"ID_FS_VERSION", &Volume::version},
    VolumeField{"ID_FS_LABEL_ENC", &Volume::name},
    VolumeField{"ID_FS_UUID", &Volume::uuid},
};

void readProperty(UdevRecord &record, Volume &volume, const UdevProperty &property)
{
    const auto &[key, value] = property;
    for (const Field &field : kFields) {
        if (field.key == key)
            record.*field.member = decodeUdevText(value);
    }
    for (const VolumeField &field : kVolumeFields) {
        if (field.key == key)
            volume.*field.member = decodeUdevText(value);
    }
    if (key == "ID_CDROM_MEDIA")
        record.hasOpticalMedium = value == "1";
}

} // namespace

std::optional<UdevProperty> takeUdevProperty(std::string_view &text)
{
    constexpr std::string_view kProperty = "E:";
    while (!text.empty()) {
        const std::string_view line = takeLine(text);
        const std::size_t equals = line.find('=');
        if (line.starts_with(kProperty) && equals != std::string_view::npos)
            return UdevProperty{line.substr(kProperty.size(), equals - kProperty.size()), line.substr(equals + 1)};
    }
    return std::nullopt;
}

UdevRecord parseUdevRecord(std::string_view text)
{
    UdevRecord record;
    Volume volume;
    while (const auto property = takeUdevProperty(text)) {
        if (property->key.starts_with("ID_"))
            readProperty(record, volume, *property);
    }
    if (!volume.fileSystem.empty())
        record.volume = volume;
    return record;
}

std::string decodeUdevText(std::string_view text)
{
    constexpr std::string_view kEscape = "\\x";
    constexpr std::size_t kDigits = 2;
    constexpr int kHexadecimal = 16;
    std::string decoded;
    while (!text.empty()) {
        if (text.starts_with(kEscape) && text.size() >= kEscape.size() + kDigits) {
            const char *const digits = text.data() + kEscape.size();
            unsigned char byte = 0;
            const auto [end, error] = std::from_chars(digits, digits + kDigits, byte, kHexadecimal);
            if (error == std::errc() && end == digits + kDigits) {
                decoded += static_cast<char>(byte);
                text.remove_prefix(kEscape.size() + kDigits);
                continue;
            }
        }
        decoded += text.front();
        text.remove_prefix(1);
    }
    return decoded;
}

} // namespace brindle::tools

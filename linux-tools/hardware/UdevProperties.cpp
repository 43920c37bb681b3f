#include "hardware/UdevProperties.h"

#include "hardware/Believable.h"
#include "hardware/FirmwareText.h"
#include "hardware/Smbios.h"

#include "kernel/UdevRecord.h"
#include "text/LineReading.h"

#include <fmt/format.h>

#include <algorithm>

namespace brindle::tools {

UdevProperties::UdevProperties(std::string_view file)
{
    while (const auto property = takeUdevProperty(file))
        m_properties.insert_or_assign(std::string(property->key), std::string(property->value));
}

std::string UdevProperties::property(const std::string &name) const
{
    const auto found = m_properties.find(name);
    return found == m_properties.end() ? std::string() : found->second;
}

std::vector<MemorySlot> memorySlots(const UdevProperties &record)
{
    constexpr std::uint64_t kMostSlots = 1024;          // more than any board has
    constexpr std::string_view kFirmwareChip = "Flash"; // the firmware's own, which is no main memory
    const auto number = [&](const std::string &name) { return leadingNumber(record.property(name)).value_or(0); };
    const std::uint64_t count = std::min(number("MEMORY_ARRAY_NUM_DEVICES"), kMostSlots);
    std::vector<MemorySlot> slots;
    for (std::uint64_t index = 0; index < count; ++index) {
        const auto named = [&](std::string_view fact) { return fmt::format("MEMORY_DEVICE_{}_{}", index, fact); };
        const auto text = [&](std::string_view fact) { return firmwareText(record.property(named(fact))); };
        const auto speed = [&](std::string_view fact) { return believed(number(named(fact)), kMostMegahertz); };
        if (text("TYPE") == kFirmwareChip || number(named("SIZE")) > kMostModuleBytes)
            continue;
        const std::uint64_t configuredSpeed = speed("CONFIGURED_SPEED_MTS");
        slots.push_back({.name = slotName(text("BANK_LOCATOR"), text("LOCATOR")),
                         .sizeBytes = number(named("SIZE")),
                         .type = moduleType(text("TYPE")),
                         .speedMegahertz = configuredSpeed != 0 ? configuredSpeed : speed("SPEED_MTS"),
                         .manufacturer = text("MANUFACTURER"),
                         .partNumber = text("PART_NUMBER"),
                         .serialNumber = text("SERIAL_NUMBER")});
    }
    return slots;
}

} // namespace brindle::tools

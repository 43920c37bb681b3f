// Any bytes as the firmware's table: read without a fault, and printed as plain lines.

#include "PlainLines.h"

#include "hardware/HardwareText.h"
#include "hardware/Smbios.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    using namespace brindle::tools;
    const std::string table(data, data + size);
    HardwareFacts facts;
    facts.memory.slots = memorySlots(table);
    brindle::requirePlain(memoryText(facts, DetailLevel::full));
    return 0;
}

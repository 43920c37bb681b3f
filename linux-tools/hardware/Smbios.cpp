#include "hardware/Smbios.h"

#include "hardware/Believable.h"
#include "hardware/FirmwareText.h"

#include <algorithm>
#include <array>
#include <optional>
#include <set>

namespace brindle::tools {
namespace {

// Types of structures.
constexpr std::uint64_t kPhysicalMemoryArray = 16;
constexpr std::uint64_t kMemoryDevice = 17;
constexpr std::uint64_t kEndOfTable = 127;

constexpr std::size_t kHeaderBytes = 4;
constexpr std::uint64_t kUseSystemMemory = 3; ///< DSP0134, 7.17.2.

struct MemoryType {
    std::uint64_t value;
    std::string_view name;
};

// DSP0134, 7.18.2. Values that name no kind of module (Other, Unknown, DRAM) are left out.
constexpr std::array kMemoryTypes{
    MemoryType{0x0F, "SDRAM"},  MemoryType{0x12, "DDR"},    MemoryType{0x13, "DDR2"},  MemoryType{0x14, "DDR2 FB-DIMM"},
    MemoryType{0x18, "DDR3"},   MemoryType{0x1A, "DDR4"},   MemoryType{0x1B, "LPDDR"}, MemoryType{0x1C, "LPDDR2"},
    MemoryType{0x1D, "LPDDR3"}, MemoryType{0x1E, "LPDDR4"}, MemoryType{0x20, "HBM"},   MemoryType{0x21, "HBM2"},
    MemoryType{0x22, "DDR5"},   MemoryType{0x23, "LPDDR5"}, MemoryType{0x24, "HBM3"}};

/// One structure: its fields, and its texts behind them.
class Structure {
public:
    Structure(std::string_view fields, std::string_view texts) : m_fields(fields), m_texts(texts) {}

    /// A little-endian number of \a bytes; 0, which stands for unknown, where the firmware's version has no such field.
    [[nodiscard]] std::uint64_t number(std::size_t offset, std::size_t bytes) const
    {
        if (offset + bytes > m_fields.size())
            return 0;
        std::uint64_t value = 0;
        for (std::size_t index = bytes; index > 0; --index)
            value = (value << 8) | static_cast<unsigned char>(m_fields[offset + index - 1]);
        return value;
    }

    [[nodiscard]] std::uint64_t type() const { return number(0, 1); }
    [[nodiscard]] std::uint64_t handle() const { return number(2, 2); }

    /// The text whose number, counted from 1, the field at \a offset holds.
    [[nodiscard]] std::string text(std::size_t offset) const
    {
        std::uint64_t wanted = number(offset, 1);
        std::string_view rest = m_texts;
        for (; wanted > 1 && !rest.empty(); --wanted)
            rest.remove_prefix(std::min(rest.find('\0'), rest.size() - 1) + 1);
        return wanted == 0 ? std::string() : firmwareText(rest.substr(0, rest.find('\0')));
    }

private:
    std::string_view m_fields;
    std::string_view m_texts;
};

/// Takes the first structure off \a table; `nullopt` where none is whole.
std::optional<Structure> takeStructure(std::string_view &table)
{
    constexpr std::string_view kEndOfTexts("\0\0", 2);
    if (table.size() < kHeaderBytes)
        return std::nullopt;
    const std::size_t length = static_cast<unsigned char>(table[1]);
    if (length < kHeaderBytes || length > table.size())
        return std::nullopt;
    const std::size_t end = table.find(kEndOfTexts, length);
    if (end == std::string_view::npos)
        return std::nullopt;
    const Structure structure(table.substr(0, length), table.substr(length, end - length));
    table.remove_prefix(end + kEndOfTexts.size());
    return structure;
}

std::vector<Structure> structuresOf(std::string_view table)
{
    std::vector<Structure> structures;
    while (const auto structure = takeStructure(table)) {
        if (structure->type() == kEndOfTable)
            break;
        structures.push_back(*structure);
    }
    return structures;
}

/// Bytes of the module, 0 for an empty socket, `nullopt` where the firmware does not know.
std::optional<std::uint64_t> moduleBytes(const Structure &device)
{
    constexpr std::uint64_t kUnknown = 0xFFFF;
    constexpr std::uint64_t kSeeExtended = 0x7FFF;
    constexpr std::uint64_t kInKibibytes = 0x8000;
    const std::uint64_t size = device.number(0x0C, 2);
    if (size == kUnknown)
        return std::nullopt;
    if (size == kSeeExtended)
        return (device.number(0x1C, 4) & 0x7FFFFFFF) << 20;
    return size & kInKibibytes ? (size & 0x7FFF) << 10 : size << 20;
}

/// A speed from its field and the wider one that holds it where it does not fit.
std::uint64_t speed(const Structure &device, std::size_t offset, std::size_t extendedOffset)
{
    constexpr std::uint64_t kSeeExtended = 0xFFFF;
    const std::uint64_t value = device.number(offset, 2);
    return believed(value == kSeeExtended ? device.number(extendedOffset, 4) & 0x7FFFFFFF : value, kMostMegahertz);
}

std::string typeName(std::uint64_t value)
{
    const auto *const found = std::ranges::find(kMemoryTypes, value, &MemoryType::value);
    return found == kMemoryTypes.end() ? std::string() : std::string(found->name);
}

std::optional<MemorySlot> slotOf(const Structure &device)
{
    const auto bytes = moduleBytes(device);
    if (!bytes || *bytes > kMostModuleBytes)
        return std::nullopt;
    const std::uint64_t configuredSpeed = speed(device, 0x20, 0x58);
    return MemorySlot{.name = slotName(device.text(0x11), device.text(0x10)),
                      .sizeBytes = *bytes,
                      .type = typeName(device.number(0x12, 1)),
                      .speedMegahertz = configuredSpeed != 0 ? configuredSpeed : speed(device, 0x15, 0x54),
                      .manufacturer = device.text(0x17),
                      .partNumber = device.text(0x1A),
                      .serialNumber = device.text(0x18)};
}

} // namespace

std::string slotName(const std::string &bank, const std::string &locator)
{
    return bank.empty() || locator.empty() ? bank + locator : bank + '/' + locator;
}

std::string moduleType(std::string_view name)
{
    const auto *const found = std::ranges::find(kMemoryTypes, name, &MemoryType::name);
    return found == kMemoryTypes.end() ? std::string() : std::string(found->name);
}

std::vector<MemorySlot> memorySlots(std::string_view table)
{
    const std::vector<Structure> structures = structuresOf(table);
    std::set<std::uint64_t> foreignArrays;
    for (const Structure &structure : structures)
        if (structure.type() == kPhysicalMemoryArray && structure.number(0x05, 1) != kUseSystemMemory)
            foreignArrays.insert(structure.handle());

    std::vector<MemorySlot> slots;
    for (const Structure &structure : structures) {
        if (structure.type() != kMemoryDevice || foreignArrays.contains(structure.number(0x04, 2)))
            continue;
        if (auto slot = slotOf(structure))
            slots.push_back(*std::move(slot));
    }
    return slots;
}

} // namespace brindle::tools

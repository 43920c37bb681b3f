#include "hardware/HardwareText.h"

#include "text/Words.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace brindle::tools {
namespace {

constexpr std::uint64_t kMebibyte = std::uint64_t{1} << 20;
constexpr std::uint64_t kGibibyte = std::uint64_t{1} << 30;
constexpr std::string_view kUnnamedCard = "Graphics Card";

std::string shown(std::string_view raw)
{
    std::string line = printable(raw);
    std::ranges::replace(line, ':', '-');
    return line;
}

/// Collects the lines of one data type.
class Report {
public:
    explicit Report(std::string_view title) { heading(0, title); }

    /// The heading of a device or of a group, which an empty line follows.
    void heading(std::size_t indent, std::string_view name)
    {
        group(indent, name);
        m_text += '\n';
    }

    void group(std::size_t indent, std::string_view name)
    {
        fmt::format_to(std::back_inserter(m_text), "{:{}}{}:\n", "", indent, name);
    }

    void value(std::size_t indent, std::string_view label, std::string_view raw)
    {
        if (!raw.empty())
            fmt::format_to(std::back_inserter(m_text), "{:{}}{}: {}\n", "", indent, label, shown(raw));
    }

    void emptyLine() { m_text += '\n'; }

    [[nodiscard]] std::string text() && { return std::move(m_text); }

private:
    std::string m_text;
};

/// "16 GB", "1536 MB": the binary units that memory is sold in.
std::string memorySize(std::uint64_t bytes)
{
    if (bytes == 0)
        return {};
    return bytes % kGibibyte == 0 ? fmt::format("{} GB", bytes / kGibibyte) : fmt::format("{} MB", bytes / kMebibyte);
}

std::string countText(std::uint64_t count)
{
    return count == 0 ? std::string() : fmt::to_string(count);
}

/// "2.6 GHz", "2.26 GHz", "2 GHz"
std::string gigahertz(std::uint64_t megahertz)
{
    if (megahertz == 0)
        return {};
    std::string number = fmt::format("{:.2f}", static_cast<double>(megahertz) / 1000);
    number.erase(number.find_last_not_of('0') + 1);
    if (number.ends_with('.'))
        number.pop_back();
    return number + " GHz";
}

std::string megahertzText(std::uint64_t megahertz)
{
    return megahertz == 0 ? std::string() : fmt::format("{} MHz", megahertz);
}

void addProcessor(Report &report, const Processor &processor)
{
    constexpr std::size_t kIndent = 6;
    if (processor.chip.empty()) {
        report.value(kIndent, "Processor Name", processor.name);
        report.value(kIndent, "Processor Speed", gigahertz(processor.speedMegahertz));
        report.value(kIndent, "Number of Processors", countText(processor.packages));
    } else {
        report.value(kIndent, "Chip", processor.chip);
    }
    report.value(kIndent, "Total Number of Cores", countText(processor.cores));
}

void addSlot(Report &report, const MemorySlot &slot, DetailLevel detail)
{
    constexpr std::size_t kIndent = 10;
    const bool isEmpty = slot.sizeBytes == 0;
    const auto orEmpty = [&](std::string_view fact) { return isEmpty ? std::string("Empty") : std::string(fact); };
    report.heading(kIndent - 2, slot.name.empty() ? "DIMM" : shown(slot.name));
    report.value(kIndent, "Size", orEmpty(memorySize(slot.sizeBytes)));
    report.value(kIndent, "Type", orEmpty(slot.type));
    report.value(kIndent, "Speed", orEmpty(megahertzText(slot.speedMegahertz)));
    report.value(kIndent, "Status", orEmpty("OK"));
    report.value(kIndent, "Manufacturer", orEmpty(slot.manufacturer));
    report.value(kIndent, "Part Number", orEmpty(slot.partNumber));
    if (detail == DetailLevel::full)
        report.value(kIndent, "Serial Number", orEmpty(slot.serialNumber));
    report.emptyLine();
}

std::string resolution(const Display &display)
{
    if (display.width == 0 || display.height == 0)
        return {};
    const std::string size = fmt::format("{} x {}", display.width, display.height);
    return display.refreshHertz == 0 ? size : fmt::format("{} @ {} Hz", size, display.refreshHertz);
}

void addDisplay(Report &report, const Display &display, DetailLevel detail)
{
    constexpr std::size_t kIndent = 10;
    report.group(kIndent - 2, display.name.empty() ? "Display" : shown(display.name));
    report.value(kIndent, "Resolution", resolution(display));
    if (detail == DetailLevel::full)
        report.value(kIndent, "Display Serial Number", display.serialNumber);
    report.value(kIndent, "Online", "Yes");
    report.value(kIndent, "Connection Type", display.isBuiltIn ? "Internal" : display.connection);
}

std::string vendorText(const GraphicsCard &card)
{
    if (!card.vendorId)
        return card.vendor;
    const std::string number = fmt::format("0x{:04x}", *card.vendorId);
    return card.vendor.empty() ? number : fmt::format("{} ({})", card.vendor, number);
}

/// The name over a card's lines. A heading with the word "Display" would be taken for one of a display.
std::string cardHeading(const GraphicsCard &card)
{
    const bool isMistakable = card.name.empty() || card.name.find("Display") != std::string::npos;
    return isMistakable ? std::string(kUnnamedCard) : shown(card.name);
}

void addCard(Report &report, const GraphicsCard &card, DetailLevel detail)
{
    constexpr std::size_t kIndent = 6;
    report.heading(kIndent - 2, cardHeading(card));
    report.value(kIndent, "Chipset Model", card.name.empty() ? kUnnamedCard : card.name);
    report.value(kIndent, "Type", "GPU");
    report.value(kIndent, "Bus", card.isBuiltIn ? "Built-In" : "PCIe");
    report.value(kIndent, card.sharesMainMemory ? "VRAM (Dynamic, Max)" : "VRAM (Total)", memorySize(card.memoryBytes));
    report.value(kIndent, "Vendor", vendorText(card));
    if (card.deviceId)
        report.value(kIndent, "Device ID", fmt::format("0x{:04x}", *card.deviceId));
    if (detail != DetailLevel::mini && !card.displays.empty()) {
        report.group(kIndent, "Displays");
        for (const Display &display : card.displays)
            addDisplay(report, display, detail);
    }
    report.emptyLine();
}

} // namespace

std::string hardwareText(const HardwareFacts &facts, DetailLevel detail)
{
    constexpr std::size_t kIndent = 6;
    Report report("Hardware");
    report.heading(4, "Hardware Overview");
    report.value(kIndent, "Model Name", facts.modelName);
    report.value(kIndent, "Model Identifier", facts.modelIdentifier);
    addProcessor(report, facts.processor);
    report.value(kIndent, "Memory", memorySize(facts.memory.sizeBytes));
    if (detail == DetailLevel::full)
        report.value(kIndent, "Serial Number (system)", facts.serialNumber);
    report.emptyLine();
    return std::move(report).text();
}

std::string memoryText(const HardwareFacts &facts, DetailLevel detail)
{
    constexpr std::size_t kIndent = 6;
    Report report("Memory");
    if (facts.memory.slots.empty()) {
        report.value(kIndent, "Memory", memorySize(facts.memory.sizeBytes));
        report.value(kIndent, "Type", facts.memory.type);
        report.emptyLine();
        return std::move(report).text();
    }
    report.heading(4, "Memory Slots");
    for (const MemorySlot &slot : facts.memory.slots)
        addSlot(report, slot, detail);
    return std::move(report).text();
}

std::string displaysText(const HardwareFacts &facts, DetailLevel detail)
{
    Report report("Graphics/Displays");
    for (const GraphicsCard &card : facts.graphics)
        addCard(report, card, detail);
    return std::move(report).text();
}

} // namespace brindle::tools

#include "hardware/KernelHardware.h"

#include "hardware/Believable.h"
#include "hardware/CpuInfo.h"
#include "hardware/FirmwareText.h"
#include "hardware/GraphicsCards.h"
#include "hardware/Smbios.h"
#include "hardware/UdevProperties.h"

#include "kernel/Files.h"
#include "text/LineReading.h"
#include "text/Words.h"

#include <algorithm>
#include <array>
#include <utility>

namespace brindle::tools {
namespace {

struct NameFile {
    std::string_view vendorStart;
    std::string_view file; ///< The one that holds what the maker calls the model.
};

// Of other makers, product_name is the model's name and its only identifier.
constexpr std::array kNameFiles{NameFile{"Apple", "product_family"}, NameFile{"LENOVO", "product_version"}};

struct SpeedFile {
    std::string_view file; ///< Of the first processor.
    std::uint64_t unitsInMegahertz;
};

// Base speed (Intel), nominal speed (ACPI CPPC), and where a driver tells neither, the highest.
constexpr std::array kSpeedFiles{SpeedFile{"cpufreq/base_frequency", 1000}, SpeedFile{"acpi_cppc/nominal_freq", 1},
                                 SpeedFile{"cpufreq/cpuinfo_max_freq", 1000}};

std::string joinedByBlank(const std::string &first, const std::string &second)
{
    return first.empty() || second.empty() ? first + second : first + ' ' + second;
}

/// "MemTotal" of `/proc/meminfo`, which lacks what the kernel keeps for itself: rounded up to whole gibibytes.
std::uint64_t memoryTotal(std::string_view memInfo)
{
    constexpr std::string_view kLabel = "MemTotal:";
    constexpr std::uint64_t kKibibytesInGibibyte = std::uint64_t{1} << 20;
    const std::size_t at = memInfo.find(kLabel);
    if (at == std::string_view::npos)
        return 0;
    const std::uint64_t kibibytes =
        believed(leadingNumber(trimmed(memInfo.substr(at + kLabel.size()))).value_or(0), kMostMemoryBytes / 1024);
    return (kibibytes + kKibibytesInGibibyte - 1) / kKibibytesInGibibyte << 30;
}

std::uint64_t sumOf(const std::vector<MemorySlot> &slots)
{
    std::uint64_t sum = 0;
    for (const MemorySlot &slot : slots)
        sum = std::min(sum + slot.sizeBytes, kMostMemoryBytes + 1); // Never so much that it begins again at 0.
    return believed(sum, kMostMemoryBytes);
}

} // namespace

KernelHardware::KernelHardware(std::filesystem::path root) : m_root(std::move(root)) {}

HardwareFacts KernelHardware::read() const
{
    HardwareFacts facts;
    readModel(facts);
    if (facts.modelName.empty())
        readDeviceTree(facts);
    facts.processor = readProcessor();
    facts.memory = readMemory();
    facts.graphics = graphicsCards(m_root);
    return facts;
}

void KernelHardware::readModel(HardwareFacts &facts) const
{
    const auto text = [&](std::string_view file) {
        return firmwareText(fileBytes(m_root / "sys/class/dmi/id" / file));
    };
    const std::string vendor = text("sys_vendor");
    const auto *const nameFile = std::ranges::find_if(
        kNameFiles, [&](const NameFile &candidate) { return vendor.starts_with(candidate.vendorStart); });
    const std::string product = text("product_name");
    const std::string board = text("board_name");
    if (nameFile != kNameFiles.end())
        facts.modelName = text(nameFile->file);
    if (facts.modelName.empty())
        facts.modelName = product.empty() ? joinedByBlank(text("board_vendor"), board) : product;
    facts.modelIdentifier = product.empty() ? board : product;
    facts.serialNumber = text("product_serial");
}

/// What machines without a PC's firmware tell.
void KernelHardware::readDeviceTree(HardwareFacts &facts) const
{
    const auto text = [&](std::string_view file) {
        const std::string bytes = fileBytes(m_root / "sys/firmware/devicetree/base" / file);
        return firmwareText(bytes.substr(0, bytes.find('\0')));
    };
    facts.modelName = text("model");
    facts.modelIdentifier = text("compatible");
    facts.serialNumber = text("serial-number");
}

Processor KernelHardware::readProcessor() const
{
    Processor processor = readCpuInfo(fileBytes(m_root / "proc/cpuinfo"));
    for (const SpeedFile &speed : kSpeedFiles) {
        if (processor.speedMegahertz != 0)
            break;
        const auto file = m_root / "sys/devices/system/cpu/cpu0" / speed.file;
        processor.speedMegahertz = believed(fileNumber(file).value_or(0) / speed.unitsInMegahertz, kMostMegahertz);
    }
    return processor;
}

Memory KernelHardware::readMemory() const
{
    Memory memory{.slots = memorySlots(fileBytes(m_root / "sys/firmware/dmi/tables/DMI"))};
    if (memory.slots.empty())
        memory.slots = memorySlots(UdevProperties(fileBytes(m_root / "run/udev/data/+dmi:id")));
    memory.sizeBytes = sumOf(memory.slots);
    if (memory.sizeBytes == 0)
        memory.sizeBytes = memoryBlockBytes();
    if (memory.sizeBytes == 0)
        memory.sizeBytes = memoryTotal(fileBytes(m_root / "proc/meminfo"));
    return memory;
}

/// The memory that the kernel manages, its own part included, counted in blocks.
std::uint64_t KernelHardware::memoryBlockBytes() const
{
    const auto folder = m_root / "sys/devices/system/memory";
    const std::uint64_t blockBytes =
        believed(leadingNumber(fileBytes(folder / "block_size_bytes"), 16).value_or(0), kMostModuleBytes);
    const auto names = namesIn(folder);
    const auto isOnline = [&](const std::string &name) {
        return name.starts_with("memory") && trimmed(fileBytes(folder / name / "state")) == "online";
    };
    const auto count = static_cast<std::uint64_t>(std::ranges::count_if(names, isOnline));
    return count > kMostMemoryBytes / std::max<std::uint64_t>(blockBytes, 1) ? 0 : blockBytes * count;
}

} // namespace brindle::tools

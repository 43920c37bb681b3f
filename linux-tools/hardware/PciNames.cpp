#include "hardware/PciNames.h"

#include "hardware/UdevProperties.h"

#include "text/LineReading.h"
#include "text/Words.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

namespace brindle::tools {
namespace {

struct Vendor {
    std::uint16_t id;
    std::string_view name;
};

constexpr std::array kVendors{Vendor{0x1002, "AMD"},     Vendor{0x1022, "AMD"},     Vendor{0x102B, "Matrox"},
                              Vendor{0x106B, "Apple"},   Vendor{0x10DE, "NVIDIA"},  Vendor{0x1234, "QEMU"},
                              Vendor{0x1414, "Hyper-V"}, Vendor{0x15AD, "VMware"},  Vendor{0x1A03, "ASPEED"},
                              Vendor{0x1AF4, "Virtio"},  Vendor{0x1B36, "Red Hat"}, Vendor{0x80EE, "VirtualBox"},
                              Vendor{0x8086, "Intel"}};

/// What stands in the last square brackets of \a name, or all of it: "GP104 [GeForce GTX 1080]" names chip and card.
std::string_view marketName(std::string_view name)
{
    const std::size_t open = name.rfind('[');
    const std::size_t close = name.rfind(']');
    if (open == std::string_view::npos || close == std::string_view::npos || close <= open + 1)
        return name;
    return name.substr(open + 1, close - open - 1);
}

/// What stands behind \a start in the first line of \a text that begins with it. The database's own first line is a
/// comment, so \a start begins with the newline before it.
std::string_view behind(std::string_view text, std::string_view start)
{
    const std::size_t at = text.find(start);
    if (at == std::string_view::npos)
        return {};
    std::string_view rest = text.substr(at + start.size());
    return trimmed(takeLine(rest));
}

/// The lines of the devices at the start of \a text, with the newline before each.
std::string_view devicesOf(std::string_view text)
{
    std::size_t end = text.find('\n');
    while (end != std::string_view::npos && end + 1 < text.size() && (text[end + 1] == '\t' || text[end + 1] == '#'))
        end = text.find('\n', end + 1);
    return text.substr(0, end);
}

} // namespace

PciNames findPciNames(std::string_view pciIds, std::uint16_t vendorId, std::uint16_t deviceId)
{
    const std::string vendorStart = fmt::format("\n{:04x}  ", vendorId);
    const std::size_t at = pciIds.find(vendorStart);
    if (at == std::string_view::npos)
        return {};
    const std::string_view fromVendor = pciIds.substr(at);
    return {.vendor = std::string(behind(fromVendor, vendorStart)),
            .device = std::string(behind(devicesOf(fromVendor.substr(1)), fmt::format("\n\t{:04x}  ", deviceId)))};
}

PciNames pciNames(const UdevProperties &record)
{
    return {.vendor = record.property("ID_VENDOR_FROM_DATABASE"), .device = record.property("ID_MODEL_FROM_DATABASE")};
}

std::string shortVendor(std::uint16_t vendorId, std::string_view vendorName)
{
    const auto *const known = std::ranges::find(kVendors, vendorId, &Vendor::id);
    return std::string(known == kVendors.end() ? vendorName.substr(0, vendorName.find(',')) : known->name);
}

std::string cardName(const PciNames &names, std::uint16_t vendorId, std::uint16_t deviceId)
{
    const std::string vendor = shortVendor(vendorId, names.vendor);
    if (names.device.empty())
        return vendor.empty() ? fmt::format("Graphics (0x{:04x} 0x{:04x})", vendorId, deviceId)
                              : fmt::format("{} Graphics (0x{:04x})", vendor, deviceId);
    const std::string_view device = marketName(names.device);
    return vendor.empty() || device.starts_with(vendor) ? std::string(device) : fmt::format("{} {}", vendor, device);
}

} // namespace brindle::tools

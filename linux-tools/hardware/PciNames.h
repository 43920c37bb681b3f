#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace brindle::tools {

class UdevProperties;

/// How a database of PCI devices calls a device; empty where it does not know it.
struct PciNames {
    std::string vendor; ///< "Advanced Micro Devices, Inc. [AMD/ATI]"
    std::string device; ///< "Ellesmere [Radeon RX 470/480/570/580]"
};

/// Looks a device up in \a pciIds, the text of the PCI ID project's `pci.ids`: a vendor is a line "1002  NAME", its
/// devices are the lines "\t67df  NAME" behind it.
[[nodiscard]] PciNames findPciNames(std::string_view pciIds, std::uint16_t vendorId, std::uint16_t deviceId);

/// The names that udev keeps with a device.
[[nodiscard]] PciNames pciNames(const UdevProperties &record);

/// A vendor in one or two words: "AMD" for 0x1002; of vendors of no graphics cards the name without its legal form.
[[nodiscard]] std::string shortVendor(std::uint16_t vendorId, std::string_view vendorName);

/// A card as its box calls it: "AMD Radeon RX 470/480/570/580"; by its vendor and number where it has no name:
/// "AMD Graphics (0x67df)".
[[nodiscard]] std::string cardName(const PciNames &names, std::uint16_t vendorId, std::uint16_t deviceId);

} // namespace brindle::tools

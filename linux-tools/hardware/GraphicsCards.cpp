#include "hardware/GraphicsCards.h"

#include "hardware/Believable.h"
#include "hardware/Edid.h"
#include "hardware/PciNames.h"
#include "hardware/UdevProperties.h"

#include "kernel/Files.h"
#include "text/LineReading.h"
#include "text/Words.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace brindle::tools {
namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 2> kPciDatabases{"usr/share/misc/pci.ids", "usr/share/hwdata/pci.ids"};

struct Connector {
    std::string_view kernelName;
    std::string_view name;
    bool isBuiltIn;
};

// The kernel's names of connectors, without their number (drivers/gpu/drm/drm_connector.c).
constexpr std::array kConnectors{
    Connector{"eDP", "Internal", true},    Connector{"LVDS", "Internal", true},   Connector{"DSI", "Internal", true},
    Connector{"DP", "DisplayPort", false}, Connector{"HDMI-A", "HDMI", false},    Connector{"HDMI-B", "HDMI", false},
    Connector{"DVI-I", "DVI", false},      Connector{"DVI-D", "DVI", false},      Connector{"DVI-A", "DVI", false},
    Connector{"VGA", "VGA", false},        Connector{"Virtual", "Virtual", false}};

/// "1920x1080": what the driver offers first where the display itself tells nothing.
void readFirstMode(const fs::path &connector, Display &display)
{
    const std::string modes = fileBytes(connector / "modes");
    const std::size_t times = modes.find('x');
    if (times == std::string::npos)
        return;
    display.width = believed(leadingNumber(modes).value_or(0), kMostPixels);
    display.height = believed(leadingNumber(std::string_view(modes).substr(times + 1)).value_or(0), kMostPixels);
}

/// \a name as in "card0-HDMI-A-1".
Display readDisplay(const fs::path &connector, std::string_view name)
{
    const std::string_view withNumber = name.substr(name.find('-') + 1);
    const std::string_view type = withNumber.substr(0, withNumber.rfind('-'));
    Display display = readEdid(fileBytes(connector / "edid")).value_or(Display{});
    if (display.width == 0)
        readFirstMode(connector, display);
    const auto *const known = std::ranges::find(kConnectors, type, &Connector::kernelName);
    display.connection = known == kConnectors.end() ? type : known->name;
    display.isBuiltIn = known != kConnectors.end() && known->isBuiltIn;
    return display;
}

/// The displays plugged into the card that \a device, its folder below `/sys`, describes.
std::vector<Display> displaysOf(const fs::path &device)
{
    std::vector<Display> displays;
    for (const std::string &card : namesIn(device / "drm")) {
        if (!card.starts_with("card"))
            continue;
        for (const std::string &name : namesIn(device / "drm" / card)) {
            const fs::path connector = device / "drm" / card / name;
            if (name.starts_with(card + '-') && trimmed(fileBytes(connector / "status")) == "connected")
                displays.push_back(readDisplay(connector, name));
        }
    }
    return displays;
}

/// udev's names, which everybody has, before those of the database that is a package of its own.
PciNames namesOf(const fs::path &root, std::string_view address, std::uint16_t vendorId, std::uint16_t deviceId)
{
    PciNames names = pciNames(UdevProperties(fileBytes(root / "run/udev/data" / fmt::format("+pci:{}", address))));
    for (auto file = kPciDatabases.begin(); names.device.empty() && file != kPciDatabases.end(); ++file)
        names = findPciNames(fileBytes(root / *file), vendorId, deviceId);
    return names;
}

GraphicsCard readCard(const fs::path &root, const fs::path &device, std::string_view address)
{
    constexpr std::string_view kOnRootBus = ":00:";
    const auto vendorId = static_cast<std::uint16_t>(fileNumber(device / "vendor").value_or(0));
    const auto deviceId = static_cast<std::uint16_t>(fileNumber(device / "device").value_or(0));
    const PciNames names = namesOf(root, address, vendorId, deviceId);
    return {.name = cardName(names, vendorId, deviceId),
            .vendor = shortVendor(vendorId, names.vendor),
            .vendorId = vendorId,
            .deviceId = deviceId,
            .isBuiltIn = address.find(kOnRootBus) != std::string_view::npos,
            .memoryBytes = believed(fileNumber(device / "mem_info_vram_total").value_or(0), kMostModuleBytes),
            .displays = displaysOf(device)};
}

/// Base class 03h in the class codes that the PCI-SIG assigns.
bool isDisplayController(const fs::path &device)
{
    constexpr std::uint64_t kDisplayController = 0x03;
    return fileNumber(device / "class").value_or(0) >> 16 == kDisplayController;
}

} // namespace

std::vector<GraphicsCard> graphicsCards(const fs::path &root)
{
    const fs::path devices = root / "sys/bus/pci/devices";
    std::vector<GraphicsCard> cards;
    std::string slotOfLast;
    for (const std::string &address : namesIn(devices)) {
        const std::string slot = address.substr(0, address.find('.'));
        // A second function in the same slot is the second head of the same card.
        if (slot == slotOfLast || !isDisplayController(devices / address))
            continue;
        slotOfLast = slot;
        cards.push_back(readCard(root, devices / address, address));
    }
    return cards;
}

} // namespace brindle::tools

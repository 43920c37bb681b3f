#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace brindle::tools {

// Texts are raw bytes as the firmware or the machine file gives them, without blanks at their ends. An empty text and a
// number of 0 mean that the fact is unknown.

/// The processors, of which all are alike.
struct Processor {
    std::string chip; ///< A system on a chip ("Apple M1 Pro"): told instead of name and speed.
    std::string name; ///< "Intel Core i7-8700"
    std::uint64_t speedMegahertz = 0;
    std::uint64_t packages = 0;
    std::uint64_t cores = 0; ///< In all packages together.
};

/// A socket for a memory module.
struct MemorySlot {
    std::string name;                 ///< "BANK 0/ChannelA-DIMM0"
    std::uint64_t sizeBytes = 0;      ///< Of the module; 0 for an empty socket.
    std::string type;                 ///< "DDR4"
    std::uint64_t speedMegahertz = 0; ///< Transfers a second in millions, which data sheets call MHz.
    std::string manufacturer;
    std::string partNumber;
    std::string serialNumber;
};

/// The main memory: of all modules, or of a system whose memory is no module.
struct Memory {
    std::uint64_t sizeBytes = 0;
    std::string type;              ///< Of memory that is no module; empty beside slots.
    std::vector<MemorySlot> slots; ///< In the firmware's order.
};

/// A screen that is connected to a graphics card.
struct Display {
    std::string name;
    std::uint64_t width = 0;  ///< Pixels.
    std::uint64_t height = 0; ///< Pixels.
    std::uint64_t refreshHertz = 0;
    std::string connection; ///< "DisplayPort", "HDMI"
    bool isBuiltIn = false;
    std::string serialNumber;
};

/// What draws for the displays, as a card or as part of the processor.
struct GraphicsCard {
    std::string name;                      ///< "AMD Radeon RX 580"
    std::string vendor;                    ///< "AMD"
    std::optional<std::uint16_t> vendorId; ///< The PCI vendor.
    std::optional<std::uint16_t> deviceId; ///< The PCI device.
    bool isBuiltIn = false;                ///< Part of the processor or its chip set, not a card in a slot.
    std::uint64_t memoryBytes = 0;
    bool sharesMainMemory = false; ///< What memoryBytes tells is then the most that it takes.
    std::vector<Display> displays;
};

/// What `system_profiler` tells of the machine.
struct HardwareFacts {
    std::string modelName;       ///< "ThinkPad X1 Carbon Gen 9"
    std::string modelIdentifier; ///< "20XWCTO1WW"
    std::string serialNumber;
    Processor processor;
    Memory memory;
    std::vector<GraphicsCard> graphics;
};

} // namespace brindle::tools

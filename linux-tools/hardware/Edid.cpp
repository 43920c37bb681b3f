#include "hardware/Edid.h"

#include "hardware/Believable.h"
#include "hardware/FirmwareText.h"

#include <cmath>
#include <numeric>

namespace brindle::tools {
namespace {

constexpr std::size_t kBlockBytes = 128;
constexpr std::string_view kSignature("\x00\xFF\xFF\xFF\xFF\xFF\xFF\x00", 8);
constexpr std::size_t kFirstDescriptor = 54;
constexpr std::size_t kDescriptorBytes = 18;

// Tags of the descriptors that hold text (3.10.3).
constexpr std::uint64_t kSerialNumber = 0xFF;
constexpr std::uint64_t kName = 0xFC;

std::uint64_t byteAt(std::string_view bytes, std::size_t offset)
{
    return static_cast<unsigned char>(bytes[offset]);
}

/// The three letters that name the maker, five bits each, 1 for A (3.4.1).
std::string makerOf(std::string_view block)
{
    const std::uint64_t packed = byteAt(block, 8) << 8 | byteAt(block, 9);
    std::string letters;
    for (const int shift : {10, 5, 0}) {
        const std::uint64_t letter = packed >> shift & 0x1F;
        if (letter < 1 || letter > 26)
            return {};
        letters.push_back(static_cast<char>('A' + letter - 1));
    }
    return letters;
}

/// A detailed timing (3.10.2); the first one is the display's own.
void readTiming(std::string_view timing, Display &display)
{
    const auto twelveBits = [&](std::size_t low, std::size_t high) {
        return byteAt(timing, low) | (byteAt(timing, high) & 0xF0) << 4;
    };
    const auto blanking = [&](std::size_t low, std::size_t high) {
        return byteAt(timing, low) | (byteAt(timing, high) & 0x0F) << 8;
    };
    const std::uint64_t pixelClockHertz = (byteAt(timing, 0) | byteAt(timing, 1) << 8) * 10000;
    display.width = twelveBits(2, 4);
    display.height = twelveBits(5, 7);
    const std::uint64_t dots = (display.width + blanking(3, 4)) * (display.height + blanking(6, 7));
    display.refreshHertz = dots == 0 ? 0 : believed((pixelClockHertz + dots / 2) / dots, kMostHertz);
}

void readDescriptor(std::string_view descriptor, Display &display)
{
    if (byteAt(descriptor, 0) != 0 || byteAt(descriptor, 1) != 0) {
        if (display.width == 0)
            readTiming(descriptor, display);
        return;
    }
    const std::string_view field = descriptor.substr(5);
    const std::string text = firmwareText(field.substr(0, field.find('\n')));
    if (byteAt(descriptor, 3) == kName)
        display.name = text;
    else if (byteAt(descriptor, 3) == kSerialNumber)
        display.serialNumber = text;
}

} // namespace

std::optional<Display> readEdid(std::string_view edid)
{
    const std::string_view block = edid.substr(0, kBlockBytes);
    if (block.size() < kBlockBytes || !block.starts_with(kSignature))
        return std::nullopt;
    const auto sum = std::accumulate(block.begin(), block.end(), 0U, [](unsigned total, char byte) {
        return total + static_cast<unsigned char>(byte);
    });
    if (sum % 256 != 0)
        return std::nullopt;
    Display display;
    for (std::size_t at = kFirstDescriptor; at + kDescriptorBytes < kBlockBytes; at += kDescriptorBytes)
        readDescriptor(block.substr(at, kDescriptorBytes), display);
    if (display.name.empty())
        display.name = makerOf(block);
    return display;
}

} // namespace brindle::tools

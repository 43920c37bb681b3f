#include "SampleEdid.h"

namespace brindle::tools {
namespace {

std::string descriptor(char tag, std::string_view text)
{
    std::string bytes{'\0', '\0', '\0', tag, '\0'};
    bytes += text;
    bytes += '\n';
    bytes.resize(18, ' ');
    return bytes;
}

} // namespace

std::string sampleEdid(std::string_view name, std::string_view serialNumber)
{
    std::string block("\x00\xFF\xFF\xFF\xFF\xFF\xFF\x00\x10\xAC", 10);
    block.resize(54, '\0');
    // 533.25 MHz; 3840 + 160 pixels, 2160 + 62 lines.
    block += std::string("\x4D\xD0\x00\xA0\xF0\x70\x3E\x80\x30\x20\x35\x00\x55\x50\x21\x00\x00\x1A", 18);
    block += descriptor('\xFF', serialNumber);
    block += descriptor('\xFC', name);
    block.resize(127, '\0');
    block += '\0';
    return withCheckSum(block);
}

std::string withCheckSum(std::string block)
{
    unsigned sum = 0;
    for (std::size_t index = 0; index < 127; ++index)
        sum += static_cast<unsigned char>(block[index]);
    block.at(127) = static_cast<char>(256 - sum % 256);
    return block;
}

} // namespace brindle::tools

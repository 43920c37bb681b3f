#include "SmbiosTable.h"

namespace brindle::tools {

SmbiosStructure::SmbiosStructure(std::uint8_t type, std::size_t length, std::uint16_t handle) : m_fields(length, '\0')
{
    with(0, 1, type).with(1, 1, length).with(2, 2, handle);
}

SmbiosStructure &SmbiosStructure::with(std::size_t offset, std::size_t bytes, std::uint64_t value)
{
    for (std::size_t index = 0; index < bytes; ++index)
        m_fields.at(offset + index) = static_cast<char>(value >> (8 * index));
    return *this;
}

SmbiosStructure &SmbiosStructure::withText(std::size_t offset, std::string_view text)
{
    m_texts.append(text).push_back('\0');
    return with(offset, 1, ++m_textCount);
}

std::string SmbiosStructure::bytes() const
{
    std::string whole = m_fields + m_texts;
    whole.append(m_texts.empty() ? 2 : 1, '\0');
    return whole;
}

SmbiosStructure systemMemoryArray(std::uint16_t handle)
{
    return SmbiosStructure(16, 0x17, handle).with(0x04, 1, 3).with(0x05, 1, 3).with(0x0D, 2, 1);
}

SmbiosStructure memoryDevice(std::uint16_t arrayHandle)
{
    return SmbiosStructure(17, 0x5C, 0x1100)
        .with(0x04, 2, arrayHandle)
        .with(0x0C, 2, 8192)
        .withText(0x10, "ChannelA-DIMM0")
        .withText(0x11, "BANK 0")
        .with(0x12, 1, 0x1A)
        .with(0x15, 2, 3200)
        .withText(0x17, "Samsung")
        .withText(0x18, "12345678")
        .withText(0x1A, "M471A1K43DB1-CWE    ")
        .with(0x20, 2, 2667);
}

std::string smbiosTable(std::initializer_list<SmbiosStructure> structures)
{
    std::string table;
    for (const SmbiosStructure &structure : structures)
        table += structure.bytes();
    return table + SmbiosStructure(127, 4, 0xFEFF).bytes();
}

} // namespace brindle::tools

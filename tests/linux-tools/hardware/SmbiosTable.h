#pragma once

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace brindle::tools {

/// Builds a structure as firmware leaves it, field by field.
class SmbiosStructure {
public:
    SmbiosStructure(std::uint8_t type, std::size_t length, std::uint16_t handle);

    SmbiosStructure &with(std::size_t offset, std::size_t bytes, std::uint64_t value);
    SmbiosStructure &withText(std::size_t offset, std::string_view text); ///< A text that isn't empty.

    [[nodiscard]] std::string bytes() const;

private:
    std::string m_fields;
    std::string m_texts;
    std::uint8_t m_textCount = 0;
};

/// An array of memory in use as system memory.
[[nodiscard]] SmbiosStructure systemMemoryArray(std::uint16_t handle);

/// An 8 GiB DDR4 module of 3200 MT/s that runs at 2667 MT/s, of the array with \a arrayHandle.
[[nodiscard]] SmbiosStructure memoryDevice(std::uint16_t arrayHandle);

/// The structures and the end of the table.
[[nodiscard]] std::string smbiosTable(std::initializer_list<SmbiosStructure> structures);

} // namespace brindle::tools

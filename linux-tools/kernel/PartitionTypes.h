#pragma once

#include <string>
#include <string_view>

namespace brindle::tools {

// The kinds of tables and the type codes are named as libblkid and udev name them: "gpt", "dos", "mac"; a GUID in
// either case, "0x83", "Apple_HFS".

/// The printed name of a kind of table: "GUID_partition_scheme".
[[nodiscard]] std::string schemeName(std::string_view table);

/// The printed name of an entry's type: "EFI", "Linux Filesystem", "Windows_NTFS". A GUID without a name is printed
/// in upper case, another code as it is.
[[nodiscard]] std::string partitionTypeName(std::string_view table, std::string_view code);

/// The first type of a printed name in a GPT, a GUID, and in an MBR, "0xaf"; empty for none.
[[nodiscard]] std::string gptTypeCode(std::string_view name);
[[nodiscard]] std::string mbrTypeCode(std::string_view name);

/// Whether an entry is no partition but holds the logical ones of an MBR.
[[nodiscard]] bool isExtended(std::string_view table, std::string_view code);

} // namespace brindle::tools

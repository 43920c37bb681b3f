#pragma once

#include <cstdint>
#include <string>

namespace brindle {

/// A number of bytes for people: "16 GB", "1.03 TB", "0.5 MB".
///
/// Decimal units, as disks and files are sold and listed in; never less than MB and never more than TB. MB have at most
/// one digit behind the point, GB and TB two, and zeros at the end are left out: the style in which macOS counts files.
/// The point is a point in every language, as in the texts of the disk tools beside it.
[[nodiscard]] std::string byteCount(std::int64_t bytes);

/// The same with B and KB for what is less, both without digits behind the point: "47 B", "12 KB".
[[nodiscard]] std::string fineByteCount(std::int64_t bytes);

} // namespace brindle

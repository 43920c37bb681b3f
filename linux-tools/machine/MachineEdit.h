#pragma once

#include "acting/Format.h"

#include <nlohmann/json_fwd.hpp>

#include <cstdint>
#include <string>
#include <string_view>

namespace brindle::tools {

// Changes to a machine file's JSON, which has been read as a machine before. Keys that they don't know stay.

/// The object of a disk that is plugged in, of a partition or of an APFS volume; null when there is none.
[[nodiscard]] nlohmann::ordered_json *findObject(nlohmann::ordered_json &machine, std::string_view identifier);

/// The APFS volume, or the volume that a disk that is plugged in or a partition bears; null when there is none.
[[nodiscard]] nlohmann::ordered_json *findVolume(nlohmann::ordered_json &machine, std::string_view identifier);

/// Takes the mounts of \a carrier out.
void removeMount(nlohmann::ordered_json &machine, std::string_view carrier);
void addMount(nlohmann::ordered_json &machine, const std::string &carrier, const std::string &mountPoint);

void setName(nlohmann::ordered_json &volume, const std::string &label);

/// Makes an empty file system on \a carrier, a disk or partition. APFS gets a container and a volume, whose identifier
/// is given back; otherwise the carrier's own is.
std::string format(nlohmann::ordered_json &machine, nlohmann::ordered_json &carrier, const Format &format,
                   const std::string &label);

/// Makes an APFS volume empty.
void renew(nlohmann::ordered_json &apfsVolume, const std::string &label);

/// Makes \a disk's table a GPT with an EFI partition and one of \a format's type behind it, which is given back
/// unformatted. The disk has room for both.
nlohmann::ordered_json &makeTable(nlohmann::ordered_json &disk, const Format &format);

/// Moves a disk to the shelf.
void unplug(nlohmann::ordered_json &machine, std::string_view identifier);

/// Moves a disk from the shelf back under a new number, which no disk had before. Gives its new identifier.
std::string plug(nlohmann::ordered_json &machine, std::string_view identifier);

} // namespace brindle::tools

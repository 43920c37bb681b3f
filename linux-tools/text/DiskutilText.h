#pragma once

#include "inventory/FindDevice.h"
#include "inventory/Inventory.h"

#include <string>

namespace brindle::tools {

/// The text of `diskutil list`: a section for every disk and container, by their numbers.
[[nodiscard]] std::string listText(const Inventory &inventory);

/// The text of `diskutil list physical`: without disk images and containers.
[[nodiscard]] std::string listPhysicalText(const Inventory &inventory);

/// The text of `diskutil list diskN`: the section of the disk or container that \a device is or lies on.
[[nodiscard]] std::string listText(const Device &device);

/// The text of `diskutil info`: one labelled fact a line. A label without a value is left out, but for the answers
/// Yes and No.
[[nodiscard]] std::string infoText(const Device &device);

} // namespace brindle::tools

#pragma once

#include "acting/Format.h"
#include "kernel/acting/Programs.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brindle::tools {

// The programs that make and name file systems, and how they are called. A name is one argument, never an option.

/// The one that makes a format.
[[nodiscard]] SystemProgram makerOf(const Format &format);

/// \param device the path of its node
[[nodiscard]] std::vector<std::string> makerArguments(const Format &format, const std::string &label,
                                                      const std::string &device);

/// The one that gives a new label to a file system of libblkid's name; `nullopt` for one that can't get any.
[[nodiscard]] std::optional<SystemProgram> labellerOf(std::string_view fileSystem);
[[nodiscard]] std::vector<std::string> labellerArguments(std::string_view fileSystem, const std::string &label,
                                                         const std::string &device);

} // namespace brindle::tools

#pragma once

#include "command/Answer.h"
#include "inventory/InventorySource.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace brindle::tools {

class Actor;

/// What a command works with.
struct Context {
    InventorySource &source;
    std::string out;        ///< For standard output.
    std::string err;        ///< For standard error.
    Actor *actor = nullptr; ///< Null where nothing can be done to the disks.

    /// Writes a part of the output at once; empty: all of it is written at the end.
    std::function<void(std::string)> tell = {};
};

using Arguments = std::span<const std::string_view>;

/// Whether a tool's or a verb's only argument asks for help.
[[nodiscard]] inline bool isHelp(std::string_view argument)
{
    return argument == "--help" || argument == "-h";
}

/// The commands of the tools, with what stands behind the program's name. They return the exit status.
[[nodiscard]] int runDiskutil(Context &context, Arguments arguments);
[[nodiscard]] int runDf(Context &context, Arguments arguments);
[[nodiscard]] int runNvram(Context &context, Arguments arguments);

/// The main function of a tool: runs the command over the machine file that the program lies beside or, without
/// one, over the running kernel, and writes what it says.
[[nodiscard]] int runTool(int (*command)(Context &, Arguments), int count, char **words);

} // namespace brindle::tools

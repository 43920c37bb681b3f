#pragma once

#include <string>
#include <vector>

namespace brindle {

/// What the command line of the program asks for.
struct Arguments {
    bool help = false;
    bool version = false;
    bool demo = false;
    bool demoAsksForPassword = false;
    std::string unknown = {}; ///< The first argument that can't be understood; empty where there is none.
};

/// Reads the arguments of a process, its name first. "-launchMode" and the mode behind it are the shell's to read.
[[nodiscard]] Arguments readArguments(const std::vector<std::string> &arguments);

} // namespace brindle

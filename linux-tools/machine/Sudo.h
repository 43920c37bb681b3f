#pragma once

#include <cstdio>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace brindle::tools {

/// What the simulated sudo was asked for: `sudo -S -v`, or `sudo -S [-k] [--] COMMAND ARGUMENTS...`.
struct SudoRequest {
    bool readsStandardInput = false; ///< -S
    bool onlyProves = false;         ///< -v
    std::vector<std::string> command;
};

/// The request of a command line without the program's name; `nullopt` when it is none.
[[nodiscard]] std::optional<SudoRequest> readSudoRequest(std::span<const char *const> arguments);

/// Reads lines from the descriptor \a input until one is the password, three times at most, and not a byte beyond it.
/// Prompts and refusals go to \a errors. False when the password wasn't given.
[[nodiscard]] bool provePassword(std::string_view password, int input, std::FILE *errors);

/// The program of the machine that \a command stands for: a path within \a root where there is one, else as it stands.
[[nodiscard]] std::filesystem::path programOf(const std::filesystem::path &root, const std::string &command);

} // namespace brindle::tools

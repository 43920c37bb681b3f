#pragma once

#include "cli/ExitStatus.h"

#include <string>

namespace CLI {
class App;
}

namespace brindle {

/// Prints the completion script of \a shell ("bash", "zsh" or "fish") for the commands and options of \a app.
ExitStatus printCompletions(const CLI::App &app, const std::string &shell);

} // namespace brindle

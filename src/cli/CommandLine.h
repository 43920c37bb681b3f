#pragma once

namespace brindle {

/// Runs the command that the arguments name, and gives the exit status of the process.
int runCommandLine(int argc, char **argv);

} // namespace brindle

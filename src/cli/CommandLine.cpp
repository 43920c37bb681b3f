#include "cli/CommandLine.h"

#include "base/Error.h"
#include "base/Log.h"
#include "base/VisibleText.h"
#include "cli/Command.h"
#include "cli/Completions.h"
#include "cli/CopyCommand.h"
#include "cli/EjectCommand.h"
#include "cli/EraseDiskCommand.h"
#include "cli/EraseEFICommand.h"
#include "cli/EraseVolumeCommand.h"
#include "cli/HeightCommand.h"
#include "cli/IconStateCommand.h"
#include "cli/InfoCommand.h"
#include "cli/ListCommand.h"
#include "cli/MountCommand.h"
#include "cli/PasswordCommand.h"
#include "cli/RenameCommand.h"
#include "cli/RowsCommand.h"
#include "cli/SaveCommand.h"
#include "cli/SettingsCommand.h"
#include "cli/SystemCommand.h"
#include "cli/UnmountCommand.h"
#include "cli/VerifyCommand.h"
#include "cli/WatchCommand.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace brindle {

namespace {

void logVisibly(std::string_view line)
{
    Log::toStandardError(visibleLines(line));
}

/// What the tools said stands in errors, and names of volumes in what they said.
void tellError(std::string_view description)
{
    fmt::print(stderr, "brindlectl: {}\n", visibleLines(description));
}

/// The arguments in the order that CLI11 wants, the last one first. It takes the argument behind "--expand=" for the
/// missing value, but knows an empty one that stands alone.
std::vector<std::string> argumentsOf(int argc, char **argv)
{
    std::vector<std::string> arguments;
    bool mayBeOption = true;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        mayBeOption = mayBeOption && argument != "--";
        const bool hasEmptyValue =
            mayBeOption && argument.starts_with("--") && argument.find('=') + 1 == argument.size();
        arguments.emplace_back(hasEmptyValue ? argument.substr(0, argument.size() - 1) : argument);
        if (hasEmptyValue)
            arguments.emplace_back();
    }
    std::reverse(arguments.begin(), arguments.end());
    return arguments;
}

/// Runs \a command and tells why it failed; output that can't be written is a failure too.
ExitStatus run(const Command &command)
{
    try {
        const ExitStatus status = command();
        if (std::fflush(stdout) != 0)
            throw Error::fromErrno(errno, "standard output");
        return status;
    } catch (const std::exception &error) {
        tellError(error.what());
        return ExitStatus::failed;
    }
}

/// Help and version are what was asked for; for each wrong usage CLI11 has a status of its own.
ExitStatus report(const CLI::App &app, const CLI::ParseError &error)
{
    std::ostringstream output;
    std::ostringstream complaint;
    const bool isWrong = app.exit(error, output, complaint) != 0;
    if (isWrong)
        fmt::print(stderr, "{}\n", visibleLines(complaint.str()));
    return run([&] {
        fmt::print("{}", output.str());
        return isWrong ? ExitStatus::wrongUsage : ExitStatus::done;
    });
}

} // namespace

int runCommandLine(int argc, char **argv)
{
    GlobalOptions options;
    Command command;
    CLI::App app("Brindle in a terminal: disks, their EFI partitions and boot loaders", "brindlectl");
    app.require_subcommand(1);
    app.fallthrough();
    app.set_version_flag("--version", "brindlectl " BRINDLE_VERSION, "Print the version and end");
    app.set_help_flag("-h,--help", "Print this help and end");
    app.add_flag("--demo{stored}", options.demo,
                 "Work on a simulated machine, which is gone afterwards; --demo=ask without its stored password")
        ->check(CLI::IsMember(std::vector<std::string>{"stored", "ask"}));
    app.add_flag("-v,--verbose", options.verbose, "Write the log to standard error");
    addListCommand(app, options, command);
    addInfoCommand(app, options, command);
    addRowsCommand(app, options, command);
    addHeightCommand(app, options, command);
    addIconStateCommand(app, options, command);
    addSystemCommand(app, options, command);
    addCopyCommand(app, options, command);
    addSaveCommand(app, options, command);
    addEraseEFICommand(app, options, command);
    addEraseVolumeCommand(app, options, command);
    addEraseDiskCommand(app, options, command);
    addVerifyCommand(app, options, command);
    addWatchCommand(app, options, command);
    addMountCommand(app, options, command);
    addUnmountCommand(app, options, command);
    addRenameCommand(app, options, command);
    addEjectCommand(app, options, command);
    addPasswordCommand(app, options, command);
    addSettingsCommand(app, options, command);
    addCompletionCommand(app, command);

    try {
        app.parse(argumentsOf(argc, argv));
    } catch (const CLI::ParseError &error) {
        return static_cast<int>(report(app, error));
    }
    Log::setSink(options.verbose ? Log::Sink(logVisibly) : Log::Sink());
    return static_cast<int>(run(command));
}

} // namespace brindle

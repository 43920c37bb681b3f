#include "cli/CommandLine.h"

#include "base/ApplicationDescription.h"
#include "base/Error.h"
#include "base/Log.h"
#include "base/VisibleText.h"
#include "cli/AutoMountCommand.h"
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
#include "cli/Terminal.h"
#include "cli/UnmountCommand.h"
#include "cli/VerifyCommand.h"
#include "cli/WatchCommand.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace brindle {

namespace {

// What the help says above the commands of a kind.
constexpr const char *kTelling = "Commands that tell";
constexpr const char *kActing = "Commands that act";

struct CommandEntry {
    std::string_view name;
    void (*add)(CLI::App &, const GlobalOptions &, Command &);
    const char *kind;
};

constexpr CommandEntry kCommands[] = {
    {"list", addListCommand, kTelling},
    {"info", addInfoCommand, kTelling},
    {"rows", addRowsCommand, kTelling},
    {"watch", addWatchCommand, kTelling},
    {"system", addSystemCommand, kTelling},
    {"settings", addSettingsCommand, kTelling},
    {"icon-state", addIconStateCommand, kTelling},
    {"height", addHeightCommand, kTelling},
    {"mount", addMountCommand, kActing},
    {"unmount", addUnmountCommand, kActing},
    {"rename", addRenameCommand, kActing},
    {"eject", addEjectCommand, kActing},
    {"copy", addCopyCommand, kActing},
    {"save", addSaveCommand, kActing},
    {"verify", addVerifyCommand, kActing},
    {"erase-efi", addEraseEFICommand, kActing},
    {"erase-volume", addEraseVolumeCommand, kActing},
    {"erase-disk", addEraseDiskCommand, kActing},
    {"automount", addAutoMountCommand, kActing},
    {"password", addPasswordCommand, kActing},
};

/// The command that the arguments name; null where they name none of kCommands. No option before it takes a value as
/// an argument of its own.
const CommandEntry *namedCommand(int argc, char **argv)
{
    const auto isOption = [](std::string_view argument) { return argument.starts_with('-'); };
    char **const first = std::find_if_not(argv + 1, argv + argc, isOption);
    const auto entry = first == argv + argc
                           ? std::end(kCommands)
                           : std::ranges::find(kCommands, std::string_view(*first), &CommandEntry::name);
    return entry == std::end(kCommands) ? nullptr : entry;
}

/// Adds \a named alone, or all commands where there is none. One takes 15 µs to make, which each start would pay for
/// all that it doesn't need.
void addCommands(CLI::App &app, const GlobalOptions &options, Command &command, const CommandEntry *named)
{
    if (named)
        return named->add(app, options, command);
    for (const CommandEntry &entry : kCommands) {
        entry.add(app, options, command);
        app.get_subcommand(std::string(entry.name))->group(entry.kind);
    }
    addCompletionCommand(app, command);
    app.get_subcommand("completion")->group(kTelling);
}

void logVisibly(std::string_view line)
{
    Log::toStandardError(visibleLines(line));
}

/// What the tools said stands in errors, and names of volumes in what they said.
void tellError(std::string_view description)
{
    tell(stderr, fmt::format("brindlectl: {}\n", visibleLines(description)));
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

constexpr std::string_view kAsking = "ask";

/// What stands behind "--demo=": "true" where nothing does.
CLI::Validator isKindOfDemo()
{
    const auto complaint = [](const std::string &kind) {
        return kind == "true" || kind == kAsking ? std::string() : fmt::format("takes {} or nothing", kAsking);
    };
    return {complaint, ""};
}

/// Runs \a command and tells why it failed; output that can't be written is a failure too, unless its reader has gone.
ExitStatus run(const Command &command)
{
    try {
        const ExitStatus status = command();
        if (std::fflush(stdout) != 0 && errno != EPIPE)
            throw Error::fromErrno(errno, "standard output");
        return status;
    } catch (const std::system_error &error) {
        if (error.code() == std::errc::broken_pipe) { // of a print; all the work is done, and nobody hears of it
            std::signal(SIGPIPE, SIG_DFL);
            std::raise(SIGPIPE);
        }
        tellError(error.what());
    } catch (const std::exception &error) {
        tellError(error.what());
    }
    return ExitStatus::failed;
}

/// Why a command is missing: no word stands in its place, or one that names none, with the commands before it.
std::string missingCommand(const CLI::App &app)
{
    std::string before;
    for (const CLI::App *named = &app; !named->get_subcommands().empty();) {
        named = named->get_subcommands().front();
        before += named->get_name() + ' ';
    }
    const std::vector<std::string> left = app.remaining(true);
    const auto isWord = [](const std::string &argument) { return !argument.starts_with('-'); };
    const auto word = std::ranges::find_if(left, isWord);
    return word == left.end() ? "A command is required" : fmt::format("There is no command \"{}{}\"", before, *word);
}

/// What CLI11 says of a wrong usage, which never names what stands in place of a command.
std::string complaintOf(const CLI::App *app, const CLI::Error &error)
{
    const bool isCommandMissing = std::string_view(error.what()) == CLI::RequiredError::Subcommand(1).what();
    return fmt::format("{}\nRun with --help for more information.",
                       isCommandMissing ? missingCommand(*app) : error.what());
}

/// Help and version are what was asked for; for each wrong usage CLI11 has a status of its own.
ExitStatus report(const CLI::App &app, const CLI::ParseError &error)
{
    std::ostringstream output;
    std::ostringstream complaint;
    const bool isWrong = app.exit(error, output, complaint) != 0;
    if (isWrong)
        tellError(complaint.str());
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
    app.group("Commands"); // of commands that belong to another
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app.failure_message(complaintOf);
    app.set_version_flag("--version", fmt::format("brindlectl {}", ApplicationDescription::kVersion),
                         "Print the version and end");
    app.set_help_flag("-h,--help", "Print this help and end");
    std::string demo;
    app.add_flag("--demo", demo,
                 "Work on a simulated machine, which is gone afterwards; with --demo=ask its password isn't stored")
        ->check(isKindOfDemo());
    app.add_flag("-v,--verbose", options.verbose, "Write the log to standard error");
    addCommands(app, options, command, namedCommand(argc, argv));

    try {
        app.parse(argumentsOf(argc, argv));
    } catch (const CLI::ParseError &error) {
        return static_cast<int>(report(app, error));
    }
    options.demo = !demo.empty();
    options.demoAsksForPassword = demo == kAsking;
    Log::setSink(options.verbose ? Log::Sink(logVisibly) : Log::Sink());
    return static_cast<int>(run(command));
}

} // namespace brindle

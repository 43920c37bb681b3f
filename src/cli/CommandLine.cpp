#include "cli/CommandLine.h"

#include "base/Error.h"
#include "base/Log.h"
#include "cli/Completions.h"
#include "cli/ExitStatus.h"
#include "cli/ListCommand.h"

#include <CLI/CLI.hpp>

#include <cstdio>
#include <functional>
#include <string>

namespace brindle {

namespace {

/// What the command line says, besides which command.
struct Options {
    bool verbose = false;
    bool json = false;
    std::string shell;
};

void addList(CLI::App &app, Options &options, std::function<ExitStatus()> &command)
{
    CLI::App *list = app.add_subcommand("list", "Tell the machine's disks with their EFI partitions");
    list->add_flag("--json", options.json, "Print a JSON array of disk objects and nothing else");
    list->callback([&] { command = [&] { return listCommand({.asJson = options.json}); }; });
}

void addCompletion(CLI::App &app, Options &options, std::function<ExitStatus()> &command)
{
    CLI::App *completion = app.add_subcommand("completion", "Print a shell's completion script for brindlectl");
    completion->add_option("shell", options.shell, "The shell")
        ->required()
        ->check(CLI::IsMember(std::vector<std::string>{"bash", "zsh", "fish"}));
    completion->callback([&] { command = [&] { return printCompletions(app, options.shell); }; });
}

/// Help and version end with 0; CLI11 has a status of its own for each wrong usage.
ExitStatus report(const CLI::App &app, const CLI::ParseError &error)
{
    return app.exit(error) == 0 ? ExitStatus::done : ExitStatus::wrongUsage;
}

ExitStatus run(const std::function<ExitStatus()> &command)
{
    try {
        const ExitStatus status = command();
        if (std::fflush(stdout) != 0)
            throw Error::fromErrno(errno, "standard output");
        return status;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "brindlectl: %s\n", error.what());
        return ExitStatus::failed;
    }
}

} // namespace

int runCommandLine(int argc, char **argv)
{
    Options options;
    std::function<ExitStatus()> command;
    CLI::App app("Brindle in a terminal: disks, their EFI partitions and boot loaders", "brindlectl");
    app.require_subcommand(1);
    app.fallthrough();
    app.set_version_flag("--version", "brindlectl " BRINDLE_VERSION, "Print the version and end");
    app.set_help_flag("-h,--help", "Print this help and end");
    app.add_flag("-v,--verbose", options.verbose, "Write the log to standard error");
    addList(app, options, command);
    addCompletion(app, options, command);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &error) {
        return static_cast<int>(report(app, error));
    }
    Log::setSink(options.verbose ? Log::toStandardError : Log::Sink());
    return static_cast<int>(run(command));
}

} // namespace brindle

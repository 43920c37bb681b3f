#include "cli/CommandLine.h"

#include "assembly/DemoMachine.h"
#include "assembly/Platform.h"
#include "base/Error.h"
#include "base/Log.h"
#include "cli/Completions.h"
#include "cli/ExitStatus.h"
#include "cli/Interruption.h"
#include "cli/ListCommand.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstdio>
#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace brindle {

namespace {

/// What the command line says, besides which command.
struct Options {
    bool verbose = false;
    bool demo = false;
    bool json = false;
    std::string shell;
};

using Command = std::function<ExitStatus()>;

/// Runs what needs a machine: on this one, or on a demo machine that is gone afterwards.
template <typename Run>
ExitStatus onMachine(const Options &options, Run run)
{
    if (!options.demo)
        return run(makePlatform(changesOfEnvironment()));
    std::optional<DemoMachine> demo;
    const Interruption interruption([&] { demo.reset(); });
    demo.emplace();
    return run(makePlatform(demo->platformChanges()));
}

void addList(CLI::App &app, Options &options, Command &command)
{
    CLI::App *list = app.add_subcommand("list", "Tell the machine's disks with their EFI partitions");
    list->add_flag("--json", options.json, "Print a JSON array of disk objects and nothing else");
    list->callback([&] {
        command = [&] {
            return onMachine(
                options, [&](Platform platform) { return listCommand(std::move(platform), {.asJson = options.json}); });
        };
    });
}

void addCompletion(CLI::App &app, Options &options, Command &command)
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

ExitStatus run(const Command &command)
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
    Command command;
    CLI::App app("Brindle in a terminal: disks, their EFI partitions and boot loaders", "brindlectl");
    app.require_subcommand(1);
    app.fallthrough();
    app.set_version_flag("--version", "brindlectl " BRINDLE_VERSION, "Print the version and end");
    app.set_help_flag("-h,--help", "Print this help and end");
    app.add_flag("--demo", options.demo, "Work on a simulated machine, which is gone afterwards");
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

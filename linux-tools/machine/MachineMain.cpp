// brindle-machine: makes simulated machines and plugs their disks in and out.

#include "command/Answer.h"
#include "machine/Plug.h"
#include "text/Words.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace {

namespace fs = std::filesystem;
using namespace brindle::tools;

/// The machine that is shipped beside this program: PREFIX/bin and PREFIX/share/brindle/demo.
fs::path shippedDemo()
{
    return fs::canonical("/proc/self/exe").parent_path().parent_path() / "share" / "brindle" / "demo";
}

std::string diskLines(const std::string &root)
{
    std::string lines;
    for (const PluggedDisk &disk : pluggedDisks(MachineFile(root)))
        lines += fmt::format("{:<4}{:<8}{}\n", disk.isIn ? "in" : "out", disk.identifier, printable(disk.mediaName));
    return lines;
}

/// What the command line says, and what is to be printed of it.
struct Call {
    std::string root;
    std::string disk;
    std::string from;
    std::string output;
};

/// What CLI11 says of a wrong usage, which never names what stands in place of a command.
std::string complaintOf(const CLI::App *app, const CLI::Error &error)
{
    const bool isCommandMissing = std::string_view(error.what()) == CLI::RequiredError::Subcommand(1).what();
    const std::vector<std::string> left = app->remaining();
    const auto word = std::ranges::find_if(left, [](const auto &argument) { return !argument.starts_with('-'); });
    const std::string missing =
        word == left.end() ? "A command is required" : fmt::format("There is no command \"{}\"", *word);
    return fmt::format("brindle-machine: {}\nRun with --help for more information.\n",
                       isCommandMissing ? missing : error.what());
}

void describe(CLI::App &app, Call &call)
{
    app.require_subcommand(1);
    app.group("Commands");
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    app.failure_message(complaintOf);
    auto *const list = app.add_subcommand("list", "Print the disks that are plugged in and out");
    auto *const in = app.add_subcommand("in", "Plug a disk in, under a new number");
    auto *const out = app.add_subcommand("out", "Pull a disk out, mounted or not");
    auto *const create = app.add_subcommand("new", "Make a machine as a copy of the demo's or another");
    for (CLI::App *const command : {list, in, out, create})
        command->add_option("ROOT", call.root, "The folder that holds machine.json")->required();
    for (CLI::App *const command : {in, out})
        command->add_option("DISK", call.disk, "An identifier or a media name")->required();
    create->add_option("--from", call.from, "The ROOT of the machine to copy");
    list->callback([&call] { call.output = diskLines(call.root); });
    in->callback([&call] { call.output = plugIn(MachineFile(call.root), call.disk) + '\n'; });
    out->callback([&call] { plugOut(MachineFile(call.root), call.disk); });
    create->callback([&call] { copyMachine(call.from.empty() ? shippedDemo() : fs::path(call.from), call.root); });
}

/// Each line without what would act on a terminal: arguments stand in complaints.
std::string printableLines(const std::string &text)
{
    std::string lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines += printable(line) + '\n';
    return lines;
}

Answer answerOf(int argc, char *argv[])
{
    CLI::App app("Makes simulated machines and plugs their disks in and out", "brindle-machine");
    Call call;
    describe(app, call);
    try {
        app.parse(argc, argv);
        return {.status = kDone, .out = std::move(call.output), .err = {}};
    } catch (const CLI::ParseError &error) {
        std::ostringstream help;
        std::ostringstream complaint;
        const bool isHelp = app.exit(error, help, complaint) == 0;
        return {.status = isHelp ? kDone : kWrongUsage, .out = help.str(), .err = printableLines(complaint.str())};
    }
}

} // namespace

int main(int argc, char *argv[])
{
    return tellAnswer([&] { return answerOf(argc, argv); });
}

// brindle-machine: makes simulated machines and plugs their disks in and out.

#include "acting/Actor.h"
#include "machine/Plug.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <cstdio>

namespace {

namespace fs = std::filesystem;
using namespace brindle::tools;

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

/// The machine that is shipped beside this program: PREFIX/bin and PREFIX/share/brindle/demo.
fs::path shippedDemo()
{
    return fs::canonical("/proc/self/exe").parent_path().parent_path() / "share" / "brindle" / "demo";
}

void printDisks(const std::string &root)
{
    for (const PluggedDisk &disk : pluggedDisks(MachineFile(root)))
        fmt::print("{:<4}{:<8}{}\n", disk.isIn ? "in" : "out", disk.identifier, printable(disk.mediaName));
}

struct Options {
    std::string root;
    std::string disk;
    std::string from;
};

void describe(CLI::App &app, Options &options)
{
    app.require_subcommand(1);
    auto *const list = app.add_subcommand("list", "Print the disks that are plugged in and out");
    auto *const in = app.add_subcommand("in", "Plug a disk in, under a new number");
    auto *const out = app.add_subcommand("out", "Pull a disk out, mounted or not");
    auto *const create = app.add_subcommand("new", "Make a machine as a copy of the demo's or another");
    for (CLI::App *const command : {list, in, out, create})
        command->add_option("ROOT", options.root, "The folder that holds machine.json")->required();
    for (CLI::App *const command : {in, out})
        command->add_option("DISK", options.disk, "An identifier or a media name")->required();
    create->add_option("--from", options.from, "The ROOT of the machine to copy");
    list->callback([&options] { printDisks(options.root); });
    in->callback([&options] { fmt::print("{}\n", plugIn(MachineFile(options.root), options.disk)); });
    out->callback([&options] { plugOut(MachineFile(options.root), options.disk); });
    create->callback(
        [&options] { copyMachine(options.from.empty() ? shippedDemo() : fs::path(options.from), options.root); });
}

} // namespace

int main(int argc, char *argv[])
{
    CLI::App app("Makes simulated machines and plugs their disks in and out", "brindle-machine");
    Options options;
    describe(app, options);
    try {
        app.parse(argc, argv);
        return 0;
    } catch (const CLI::ParseError &error) {
        return app.exit(error) == 0 ? 0 : kWrongUsage;
    } catch (const std::exception &error) {
        std::fprintf(stderr, "brindle-machine: %s\n", error.what());
        return kFailed;
    }
}

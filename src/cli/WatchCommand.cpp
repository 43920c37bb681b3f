#include "cli/WatchCommand.h"

#include "assembly/Assembly.h"
#include "assembly/Interruption.h"
#include "base/BlockOn.h"
#include "base/Completion.h"
#include "base/Error.h"
#include "cli/Acting.h"
#include "cli/DiskTable.h"
#include "cli/Terminal.h"
#include "cli/TerminalDialogs.h"
#include "cli/WatchEnd.h"

#include <CLI/CLI.hpp>
#include <QObject>
#include <QSocketNotifier>
#include <fmt/chrono.h>

#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>

namespace brindle {

namespace {

/// Why the watch ends: nothing where whoever started it or reads it has had enough.
using End = std::optional<Error>;

QCoro::Task<End> awaited(Completion<End> end)
{
    co_return co_await end;
}

std::string jsonOf(const std::vector<PhysicalDisk> &disks, Scheduler::Date date)
{
    const auto sinceEpoch = std::chrono::floor<std::chrono::milliseconds>(date.time_since_epoch());
    const std::time_t seconds = std::chrono::floor<std::chrono::seconds>(sinceEpoch).count();
    return fmt::format("{{\"date\":\"{:%FT%T}.{:03}Z\",\"disks\":{}}}\n", fmt::gmtime(seconds),
                       sinceEpoch.count() - seconds * 1000, encodeDisks(disks, JSONLayout::Compact));
}

std::string tableOf(const std::vector<PhysicalDisk> &disks, Scheduler::Date date)
{
    const Terminal terminal = Terminal::ofStandardOutput();
    const std::time_t seconds = std::chrono::system_clock::to_time_t(date);
    const std::string heading = styled(fmt::format("{:%F %T}", fmt::localtime(seconds)), Style::dim, terminal);
    return fmt::format("{}\n{}\n", heading, diskTable(disks, terminal));
}

void print(const std::string &text, const Completion<End> &end)
{
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), stdout) == text.size();
    if (isWritten && std::fflush(stdout) == 0)
        return;
    end.complete(errno == EPIPE ? End() : End(Error::fromErrno(errno, "standard output")));
}

/// Calls back when the reader of standard output has gone: a pipe without a reader is told as an exception.
std::unique_ptr<QSocketNotifier> watchForReader(std::function<void()> readerHasGone)
{
    auto notifier = std::make_unique<QSocketNotifier>(STDOUT_FILENO, QSocketNotifier::Exception);
    QObject::connect(notifier.get(), &QSocketNotifier::activated, notifier.get(),
                     [self = notifier.get(), readerHasGone = std::move(readerHasGone)] {
                         self->setEnabled(false);
                         readerHasGone();
                     });
    return notifier;
}

struct WatchOptions {
    bool asJson = false;
    ActingOptions acting{.endsSoon = false};
};

ExitStatus watch(Platform platform, bool asJson)
{
    Scheduler &clock = *platform.scheduler;
    auto ownDialogs = std::make_unique<TerminalDialogs>();
    TerminalDialogs &dialogs = *ownDialogs;
    platform.dialogs = std::move(ownDialogs); // so that they can be closed
    Assembly assembly(std::move(platform));
    DiskManager &manager = assembly.diskManager();
    const Completion<End> end;
    const auto endWell = [end] { end.complete(std::nullopt); };
    std::optional<Interruption> interruption(std::in_place, endWell, Interruption::Then::goOn);
    const auto reader = watchForReader(endWell);
    QObject::connect(&manager, &DiskManager::disksChanged, &manager, [&] {
        if (!end.isComplete())
            print((asJson ? jsonOf : tableOf)(manager.disks(), clock.date()), end);
    });

    assembly.diskEventMonitor().startMonitoring();
    const auto scan = manager.startScan(false);
    const End reason = blockOn(awaited(end));
    interruption.reset(); // the next signal ends the program at once
    endWatch(assembly, dialogs, clock);
    awaitNotifications(assembly);
    if (reason)
        throw Error(*reason);
    return ExitStatus::done;
}

} // namespace

void addWatchCommand(CLI::App &app, const GlobalOptions &options, Command &command)
{
    CLI::App *subcommand =
        app.add_subcommand("watch", "Tell the disks now and whenever one comes, goes, is mounted or unmounted");
    const auto watching = std::make_shared<WatchOptions>();
    ActingOptions &acting = watching->acting;
    subcommand->add_flag("--json", watching->asJson,
                         "Print each list as a JSON object, with its date, on a line of its own");
    subcommand->add_flag("--automount", acting.mountsMarkedDisks,
                         "Mount the EFI partition of a disk that `automount` has marked when it is plugged in");
    addPasswordOption(*subcommand, acting);
    addNotifyOption(*subcommand, acting, "each mount");
    addOpenOption(*subcommand, acting, "each partition that was mounted");
    subcommand->callback([&options, &command, watching] {
        command = [&options, watching] {
            const auto run = [&](Platform platform) { return watch(std::move(platform), watching->asJson); };
            return onMachine(options, run, watching->acting);
        };
    });
}

} // namespace brindle

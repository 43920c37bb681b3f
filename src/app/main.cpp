#include "app/Arguments.h"

#include "assembly/DemoMachine.h"
#include "assembly/Interruption.h"
#include "assembly/ProcessStart.h"
#include "assembly/ShellAssembly.h"
#include "base/BlockOn.h"
#include "base/Error.h"
#include "platform/NoStatusItemHost.h"
#include "platform/linux/Compositor.h"
#include "platform/linux/DBusSingleInstance.h"
#include "platform/linux/PortalAppearance.h"
#include "ui/PaletteAppearance.h"
#include "ui/QtApplicationHost.h"
#include "ui/QtDialogs.h"
#include "ui/QtWindowHost.h"
#include "ui/UserInterface.h"
#include "ui/WindowBridge.h"
#include "views/WindowContentPresenter.h"

#include <QApplication>
#include <QQmlEngine>

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using namespace brindle;

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

constexpr const char *kHelp = R"(Usage: brindle [--demo[=ask]] [-launchMode menubar|window]

Lists the disks of this machine with their EFI system partitions in a window.

  --demo            works on a simulated machine, which is gone afterwards; its
                    password is stored, with --demo=ask it has to be typed
  -launchMode MODE  begins in the mode menubar or window instead of the stored
                    one; a desktop without status items gets the window
  --help            prints this
  --version         prints the version
)";

/// Whether the environment tells where windows go; Qt aborts the program where none does.
bool hasDesktop()
{
    constexpr std::array kVariables{"QT_QPA_PLATFORM", "DISPLAY", "WAYLAND_DISPLAY", "WAYLAND_SOCKET"};
    return !std::ranges::all_of(kVariables, qEnvironmentVariableIsEmpty);
}

std::unique_ptr<WindowContentPresenter> makeContent(ShellAssembly &shell, WindowHost &windows)
{
    Assembly &assembly = shell.assembly();
    return std::make_unique<WindowContentPresenter>(
        WindowContentPresenter::Surroundings{.model = {.diskManager = assembly.diskManager(),
                                                       .efiOperations = assembly.efiOperations(),
                                                       .dialogs = assembly.dialogs(),
                                                       .workspace = assembly.workspace(),
                                                       .userDefaults = assembly.userDefaults()},
                                             .efiCopyManager = assembly.efiCopyManager(),
                                             .eraseManager = assembly.eraseOperationManager(),
                                             .eraseFlow = assembly.eraseFlow(),
                                             .userDefaults = assembly.userDefaults(),
                                             .scheduler = assembly.scheduler(),
                                             .windowHost = windows,
                                             .unfinishedWork = assembly.unfinishedWork(),
                                             .notifications = shell.notifications()});
}

/// The scheme of the portal; where the environment names one, that one alone.
std::unique_ptr<Appearance> makeAppearance(const PaletteAppearance &palette)
{
    if (colorSchemeOfEnvironment())
        return std::make_unique<PaletteAppearance>(colorSchemeOfEnvironment());
    return std::make_unique<PortalAppearance>(palette);
}

/// Lets the windows have the colours of \a appearance, and the application hear of their end.
void connectWindows(QtWindowHost &windows, QtApplicationHost &application, Appearance &appearance)
{
    windows.setColorScheme(appearance.colorScheme());
    QObject::connect(&appearance, &Appearance::colorSchemeChanged, &windows,
                     [&] { windows.setColorScheme(appearance.colorScheme()); });
    QObject::connect(&windows, &QtWindowHost::quitRequested, [&] { application.terminate(); });
    QObject::connect(&windows, &QtWindowHost::lastWindowClosed, [&] { application.lastWindowClosed(); });
}

/// What a signal that ends programs does: the application is asked to end, and whoever insists leaves it at once.
Interruption::Function quitBySignal(QtApplicationHost &application, std::optional<DemoMachine> &demo)
{
    return [&application, &demo, isAskedToEnd = false](int signalNumber) mutable {
        application.terminate();
        // Twice is no insisting of a terminal that is closed or a session that ends, but of who presses Ctrl-C.
        if (!std::exchange(isAskedToEnd, true) || signalNumber != SIGINT)
            return Interruption::Then::goOn;
        demo.reset();
        return Interruption::Then::endBySignal;
    };
}

int run(const Arguments &options, const std::vector<std::string> &arguments)
{
    std::optional<DemoMachine> demo;
    if (options.demo)
        demo.emplace(options.demoAsksForPassword ? DemoMachine::Password::missing : DemoMachine::Password::stored);

    QQmlEngine engine;
    setUpEngine(engine);
    QtApplicationHost application;
    QtWindowHost windows(engine);
    const NoStatusItemHost statusItem;
    const PaletteAppearance palette(colorSchemeOfEnvironment());
    const std::unique_ptr<Appearance> appearance = makeAppearance(palette);
    connectWindows(windows, application, *appearance);

    Platform platform = makePlatform(demo ? demo->platformChanges() : changesOfEnvironment());
    std::optional<DBusSingleInstance> instance;
    // A process that another of the session has come to the front for is done.
    if (!demo && !blockOn(instance.emplace(platform.bundle.identifier.value_or("com.orlane.Brindle")).claim()))
        return 0;
    platform.dialogs = std::make_unique<QtDialogs>(engine);
    ShellAssembly shell(
        std::move(platform),
        {.application = application, .windows = windows, .statusItem = statusItem, .appearance = *appearance},
        arguments);
    auto *bridge = engine.singletonInstance<WindowBridge *>(qmlTypeId("Brindle", 1, 0, "WindowBridge"));
    const Compositor compositor(QGuiApplication::platformName().toStdString());
    bridge->setIsComposited(compositor.isRunning());
    QObject::connect(&compositor, &Compositor::isRunningChanged, bridge,
                     [&] { bridge->setIsComposited(compositor.isRunning()); });
    QObject::connect(bridge, &WindowBridge::applicationMenuRequested,
                     [&](QPoint place) { application.popUpMenu(place); });
    windows.setMakeContent([&] { return makeContent(shell, windows); });
    if (instance)
        QObject::connect(&*instance, &DBusSingleInstance::reopened, [&] { shell.reopen(); });
    const Interruption interruption(quitBySignal(application, demo));
    application.finishLaunching();
    // While the first tools run: the window comes a while after the start, and is whole by then.
    QMetaObject::invokeMethod(&windows, &QtWindowHost::prepare, Qt::QueuedConnection);
    const int status = QApplication::exec();
    instance.reset();           // who starts it from now on gets a window of their own: the end can take a while
    windows.setMakeContent({}); // what was prepared refers to the shell
    return status;
}

} // namespace

int main(int argc, char **argv)
{
    prepareProcess();
    const std::vector<std::string> arguments(argv, argv + argc);
    const Arguments options = readArguments(arguments);
    if (!options.unknown.empty()) {
        fmt::print(stderr, "brindle: {} can't be understood; brindle --help tells what can\n", options.unknown);
        return kWrongUsage;
    }
    if (options.help || options.version) {
        fmt::print("{}", options.help ? kHelp : "brindle " BRINDLE_VERSION "\n");
        return 0;
    }
    if (!hasDesktop()) {
        fmt::print(stderr, "brindle: there is no desktop here to show a window on; brindlectl works in a terminal\n");
        return kFailed;
    }
    useSoftwareRenderer();
    QApplication application(argc, argv);
    QApplication::setApplicationDisplayName(QStringLiteral("Brindle"));
    QApplication::setDesktopFileName(QStringLiteral("com.orlane.Brindle"));
    QApplication::setQuitOnLastWindowClosed(false);
    try {
        return run(options, arguments);
    } catch (const Error &error) {
        fmt::print(stderr, "brindle: {}\n", error.what());
        return kFailed;
    }
}

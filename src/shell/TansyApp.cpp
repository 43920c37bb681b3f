#include "shell/TansyApp.h"

#include "base/Spawn.h"
#include "shell/LaunchValidation.h"

#include <QCoroTask>
#include <fmt/format.h>

#include <string>
#include <utility>

namespace brindle {

namespace {

std::string aboutText(const BundleConstants &constants, const SystemValues &system)
{
    std::string name = system.systemName();
    if (const auto version = system.systemVersion())
        name += ' ' + *version;
    return fmt::format("Version {} ({})\n\nRunning on {}\nBundle ID: {}", constants.version, constants.build, name,
                       constants.identifier);
}

QCoro::Task<> showAlert(Dialogs *dialogs, Alert alert)
{
    auto shown = dialogs->alert(std::move(alert));
    co_await shown;
}

} // namespace

TansyApp::TansyApp(const Surroundings &surroundings) : m_surroundings(surroundings), m_constants(surroundings.bundle)
{
    writeLaunchValidation({.bundle = m_surroundings.bundle, .system = m_surroundings.system});
    m_currentLaunchMode = launchMode(m_surroundings.defaults);
    m_surroundings.application.setApplicationMenu(commands());
}

std::vector<MenuGroup> TansyApp::commands()
{
    const MenuEntry about{.title = "About Brindle", .action = [this] { showAbout(); }};
    const MenuEntry quit{
        .title = "Quit Brindle", .key = "q", .action = [this] { m_surroundings.application.terminate(); }};
    return {{about}, {quit}};
}

void TansyApp::showAbout()
{
    const Alert alert{.messageText = std::string(kApplicationName),
                      .informativeText = aboutText(m_constants, m_surroundings.system),
                      .style = AlertStyle::informational};
    spawn([dialogs = &m_surroundings.dialogs, alert] { return showAlert(dialogs, alert); });
}

} // namespace brindle

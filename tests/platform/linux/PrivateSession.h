#pragma once

#include "support/PrivateBus.h"

#include <QProcess>
#include <QTemporaryDir>

#include <string>
#include <vector>

namespace brindle {

/// A private bus with a real gnome-keyring on it whose keyring is open. Nothing of the user's own is touched. Nobody is
/// there to be asked.
class PrivateSession {
public:
    /// Why there can be no such session on this machine; empty where there can.
    [[nodiscard]] static std::string obstacle();

    PrivateSession();
    ~PrivateSession();
    PrivateSession(const PrivateSession &) = delete;
    PrivateSession &operator=(const PrivateSession &) = delete;

    void lockKeyring();
    void endKeyring();
    void endBus();
    void refuse(const char *interface, const char *member) { m_bus.refuse(interface, member); } ///< See PrivateBus.

    /// Whether the keyring has tried to ask somebody.
    [[nodiscard]] bool hasAsked();

    /// What `secret-tool ARGUMENTS` prints: another program's view of the same service.
    [[nodiscard]] std::string secretTool(const std::vector<std::string> &arguments);

private:
    void startKeyring();

    PrivateBus m_bus;
    QTemporaryDir m_home;
    QProcess m_keyring;
};

} // namespace brindle

#pragma once

#include <QProcess>

#include <string>

namespace brindle {

/// A D-Bus session of the test's own: this process and those that it starts know no other while it lives. The bus
/// starts no service by itself, so that nothing of the user's own is touched and no dialog can come up.
class PrivateBus {
public:
    /// Why there can be no such session on this machine; empty where there can.
    [[nodiscard]] static std::string obstacle();

    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus &) = delete;
    PrivateBus &operator=(const PrivateBus &) = delete;

    void end();   ///< Whoever is on the bus loses it.
    void start(); ///< Again, at the same address.

    /// From now on the bus answers calls of the method \a member of \a interface with an error.
    void refuse(const char *interface, const char *member);

private:
    static void configure(const QString &policy);

    QProcess m_daemon;
    QByteArray m_addressBefore;
};

} // namespace brindle

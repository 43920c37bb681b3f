#pragma once

#include <QCoroTask>
#include <QDBusConnection>
#include <QObject>
#include <QString>
#include <QVariantMap>

#include <chrono>
#include <optional>
#include <string>

namespace brindle {

/// Keeps the application to one process in a session: the one that owns the application's name on the session bus.
///
/// It speaks the bus's org.freedesktop.Application, of freedesktop.org's desktop entries, as far as Activate: any other
/// start of the application calls that, and so may any program. The caller's right to come to the front, without which
/// a Wayland desktop raises no window, goes over to this process.
class DBusSingleInstance final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    /// How long another process may take to say that it comes to the front.
    static constexpr std::chrono::milliseconds kPatience{5000};

    /// \a identifier is the application's, in reverse domain order.
    explicit DBusSingleInstance(const std::string &identifier, std::chrono::milliseconds patience = kPatience);
    ~DBusSingleInstance() override; ///< Gives the name back.

    /// Whether this process is to go on: false where another one has the name and has been told to come to the front.
    /// True where that doesn't answer and where there is no bus, so that a start always shows something. Called once;
    /// the object outlives the task.
    [[nodiscard]] QCoro::Task<bool> claim();

    Q_SCRIPTABLE void Activate(const QVariantMap &platformData);

Q_SIGNALS:
    /// The user has started the application again.
    void reopened();

private:
    [[nodiscard]] QCoro::Task<bool> requestName();
    [[nodiscard]] QCoro::Task<bool> activateOther();

    QString m_name;
    QString m_path;
    std::chrono::milliseconds m_patience;
    std::optional<QDBusConnection> m_connection;
};

} // namespace brindle

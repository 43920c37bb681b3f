#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>
#include <QStringList>
#include <QVariantMap>

#include <string>
#include <vector>

namespace brindle {

/// A notification daemon on the session bus that shows nothing: it remembers what it was asked and acts the user.
/// It answers from the test's own event loop. It takes the name over from whoever has it.
class FakeNotificationDaemon : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Notifications")

public:
    struct Shown {
        uint id = 0;
        QString appName;
        uint replacesId = 0;
        QString icon;
        QString summary;
        QString body;
        QStringList actions;
        QVariantMap hints;
        int expireTimeout = 0;
    };

    FakeNotificationDaemon();
    ~FakeNotificationDaemon() override;

    QStringList capabilities{QStringLiteral("body"), QStringLiteral("body-markup"), QStringLiteral("actions")};
    std::vector<Shown> shown;
    bool refuses = false;  ///< Answers Notify with an error.
    bool isSilent = false; ///< Never answers Notify.

    void invoke(uint id, const QString &action);
    void close(uint id);

    /// Another program on the bus that says the same as invoke().
    static void pretendToInvoke(uint id, const QString &action);

    Q_SCRIPTABLE QStringList GetCapabilities() const { return capabilities; }
    Q_SCRIPTABLE uint Notify(const QString &appName, uint replacesId, const QString &icon, const QString &summary,
                             const QString &body, const QStringList &actions, const QVariantMap &hints,
                             int expireTimeout);

private:
    QDBusConnection m_connection;
};

} // namespace brindle

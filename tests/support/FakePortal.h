#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusVariant>
#include <QObject>
#include <QString>

namespace brindle {

/// A desktop portal on the session bus that knows one setting. It answers from the test's own event loop.
class FakePortal : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit FakePortal(const QVariant &colorScheme);
    ~FakePortal() override;

    QVariant colorScheme;
    int reads = 0;

    /// Tells that the setting \a key of \a space has changed.
    void tell(const QString &space = QStringLiteral("org.freedesktop.appearance"),
              const QString &key = QStringLiteral("color-scheme"));

    /// Another program on the bus that tells that the colour scheme has changed to \a colorScheme.
    static void pretendToTell(const QVariant &colorScheme);

    Q_SCRIPTABLE QDBusVariant Read(const QString &space, const QString &key);

private:
    QDBusConnection m_connection;
};

} // namespace brindle

// The application itself, main() and all, with somebody built in who uses its window while the main thread is watched.
// The environment variable BRINDLE_FORBIDDEN names one thing to do wrong on the way.

#include "MainThreadWatch.h"

#include <fmt/format.h>

#include <QApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QProcess>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSemaphore>
#include <QTest>
#include <QThread>
#include <QTimer>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace brindle {
namespace {

constexpr int kTickMilliseconds = 10;
constexpr int kPatienceMilliseconds = 60'000; ///< For one step.
constexpr int kStuck = 3;

const QString kEFI = QStringLiteral("/Volumes/EFI");

QQuickItem *find(QQuickItem *parent, const QString &name)
{
    if (!parent->isVisible())
        return nullptr;
    if (parent->objectName() == name)
        return parent;
    for (QQuickItem *child : parent->childItems()) {
        if (QQuickItem *found = find(child, name))
            return found;
    }
    return nullptr;
}

/// The visible item; "a/b" is b below a. Null where there is none.
QQuickItem *item(QQuickWindow *window, const QString &path)
{
    QQuickItem *found = window ? window->contentItem() : nullptr;
    for (const QString &name : path.split(QLatin1Char('/')))
        found = found ? find(found, name) : nullptr;
    return found;
}

template <typename Wanted = QQuickWindow>
Wanted *windowWith(const QString &name)
{
    for (QWindow *window : QGuiApplication::topLevelWindows()) {
        auto *wanted = qobject_cast<Wanted *>(window);
        if (wanted && wanted->isVisible() && (window->objectName() == name || item(wanted, name)))
            return wanted;
    }
    return nullptr;
}

QQuickWindow *mainWindow()
{
    return windowWith(QStringLiteral("mainWindow"));
}

bool shows(const QString &path)
{
    return item(mainWindow(), path) != nullptr;
}

/// Once the item stands still: it is laid out by then.
bool click(const QString &path, QQuickWindow *window = mainWindow(), Qt::MouseButton button = Qt::LeftButton)
{
    static std::pair<QString, QPoint> lastPlace;
    QQuickItem *target = item(window, path);
    if (!target || !target->isEnabled() || target->opacity() < 1)
        return false;
    const QPoint middle = target->mapToScene(QPointF(target->width() / 2, target->height() / 2)).toPoint();
    if (std::exchange(lastPlace, {path, middle}) != std::pair(path, middle))
        return false;
    QTest::mouseMove(window, {}); // two clicks at one place are no double click
    QTest::mouseClick(window, button, Qt::NoModifier, middle);
    return true;
}

bool chooseFromMenu(const QString &text)
{
    auto *menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
    if (!menu)
        return false;
    for (QAction *action : menu->actions()) {
        if (action->text() != text)
            continue;
        action->trigger();
        menu->close();
        mainWindow()->requestActivate(); // what a window manager does
        return true;
    }
    return false;
}

bool saveBackup()
{
    for (QWidget *widget : QApplication::topLevelWidgets()) {
        auto *panel = qobject_cast<QFileDialog *>(widget);
        if (!panel || !panel->isVisible())
            continue;
        panel->selectFile(qEnvironmentVariable("BRINDLE_BACKUP"));
        QMetaObject::invokeMethod(panel, "accept");
        return true;
    }
    return false;
}

/// Something to do, again and again until it has succeeded.
struct Step {
    const char *name;
    std::function<bool()> isDone;
};

Step clickOn(const char *name, const QString &path)
{
    return {name, [path] { return click(path); }};
}

Step waitFor(const char *name, const QString &path)
{
    return {name, [path] { return shows(path); }};
}

Step menuOf(const char *name, const QString &row)
{
    return {name, [row] { return click(row + QStringLiteral("/diskIcon"), mainWindow(), Qt::RightButton); }};
}

Step choose(const char *name, const QString &text)
{
    return {name, [text] { return chooseFromMenu(text); }};
}

std::vector<Step> wholeVisit()
{
    using namespace Qt::StringLiterals;
    return {
        waitFor("the window with its rows", u"disk0/mountButton"_s),
        {"the refresh begins",
         [] {
             QTest::keyClick(mainWindow(), Qt::Key_F5);
             return shows(u"refreshSpinner"_s);
         }},
        waitFor("the refresh ends", u"refreshButton"_s),
        clickOn("mount the target", u"disk2/mountButton"_s),
        waitFor("the target is mounted", u"disk2/copyButton"_s),
        menuOf("the menu for the details", u"disk0"_s),
        choose("ask for the details", u"View SMART Details..."_s),
        {"read the details", [] { return click(u"button0"_s, windowWith(u"informativeText"_s)); }},
        {"the details close", [] { return !windowWith(u"informativeText"_s); }},
        clickOn("copy", u"disk3/copyButton"_s),
        clickOn("choose the target", u"destination0"_s),
        clickOn("begin the copy", u"copyButton"_s),
        clickOn("copy with a backup", u"option0"_s),
        {"save the backup", saveBackup},
        waitFor("the list after the copy", u"disk2/mountButton"_s),
        menuOf("the menu for an erase", u"disk2"_s),
        choose("ask for an erase", u"Erase EFI Partition..."_s),
        {"type the name",
         [] {
             QQuickItem *const field = item(mainWindow(), u"nameField"_s);
             if (!field)
                 return false;
             field->setProperty("text", QString());
             for (const char letter : std::string_view("SYSTEM"))
                 QTest::keyClick(mainWindow(), letter);
             return true;
         }},
        clickOn("erase", u"eraseButton"_s),
        clickOn("the erase ends", u"doneButton"_s),
        clickOn("quit", u"quitButton"_s),
    };
}

/// One forbidden thing of each kind.
void doWrong(const std::string &what)
{
    const QString below = QDir::tempPath() + kEFI + QStringLiteral("/EFI");
    if (what == "file")
        (void)QFileInfo::exists(below);
    else if (what == "bus")
        QDBusConnection::sessionBus().call(
            QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
                                           QStringLiteral("org.freedesktop.DBus"), QStringLiteral("GetId")));
    else if (what == "child")
        QProcess::execute(QStringLiteral("/bin/true"));
    else if (what == "sleep")
        QThread::msleep(1);
    else if (what == "loop") {
        QEventLoop loop;
        QTimer::singleShot(1, &loop, &QEventLoop::quit);
        loop.exec();
    } else if (what == "thread") {
        const std::unique_ptr<QThread> thread(QThread::create([] { QThread::msleep(1); }));
        thread->start();
        thread->wait();
    }
}

class Visitor : public QObject {
public:
    explicit Visitor(std::vector<Step> steps) : m_steps(std::move(steps))
    {
        connect(&m_tick, &QTimer::timeout, this, &Visitor::goOn);
        m_tick.start(kTickMilliseconds);
    }

    [[nodiscard]] const MainThreadWatch &watch() const { return *m_watch; }

private:
    /// A click on what was about to move or to go is lost: the last step is done once more where the next one doesn't
    /// come. What has come of it already is not there any more to be clicked on.
    void goOn()
    {
        constexpr int kTicksBeforeOnceMore = 100;
        const bool isOnceMore = ++m_ticks % kTicksBeforeOnceMore == 0 && m_next > 0;
        if (m_patience.hasExpired()) {
            fmt::print("stuck: {}\n", m_next < m_steps.size() ? m_steps[m_next].name : "the end");
            std::fflush(stdout);
            std::_Exit(kStuck);
        }
        if (m_next == m_steps.size() || !m_steps[m_next].isDone()) {
            if (isOnceMore)
                (void)m_steps[m_next - 1].isDone();
            return;
        }
        const Step &step = m_steps[m_next];
        m_ticks = 0;
        fmt::print("step: {}\n", step.name);
        m_patience = QDeadlineTimer(kPatienceMilliseconds);
        if (m_next++ == 0) {
            doWrongUntilFound(qEnvironmentVariable("BRINDLE_FORBIDDEN").toStdString());
            // What the application still does without its window, nobody waits for.
            connect(mainWindow(), &QObject::destroyed, this, [this] { m_watch->end(); });
        }
    }

    /// What comes too soon to be waited for is done once more.
    void doWrongUntilFound(const std::string &what)
    {
        constexpr int kTimes = 1000;
        const std::size_t before = m_watch->findings().size();
        for (int i = 0; i < kTimes && m_watch->findings().size() == before; ++i)
            doWrong(what);
    }

    std::vector<Step> m_steps;
    std::size_t m_next = 0;
    int m_ticks = 0; ///< Since the last step.
    QTimer m_tick;
    QDeadlineTimer m_patience{kPatienceMilliseconds};
    std::unique_ptr<MainThreadWatch> m_watch = std::make_unique<MainThreadWatch>("/Volumes/");
};

Visitor *visitor = nullptr;

void tell()
{
    for (const std::string &finding : visitor->watch().findings()) {
        // A demo machine is made before there is a window, and nothing of it is mounted yet.
        if (finding.find("DemoMachine::DemoMachine") == std::string::npos)
            fmt::print("finding: {}\n", finding);
    }
    fmt::print("seen: {} file calls, {} waits for events\n", visitor->watch().fileCalls(),
               visitor->watch().waitsForEvents());
    delete visitor;
}

void come()
{
    const bool isShort = qEnvironmentVariableIsSet("BRINDLE_FORBIDDEN");
    std::vector<Step> steps = wholeVisit();
    if (isShort)
        steps.erase(steps.begin() + 1, steps.end() - 1);
    visitor = new Visitor(std::move(steps));
    qAddPostRoutine(tell);
}

Q_COREAPP_STARTUP_FUNCTION(come)

} // namespace
} // namespace brindle

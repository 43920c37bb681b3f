// Built into a program with a Qt Quick window, tells when a frame has been shown that has the item which the
// environment variable BRINDLE_WAIT_FOR names, or else the first frame: the line "frame", with the clock's nanoseconds.
// Where BRINDLE_SCROLL is set, the list is scrolled to its end then, and the line "scroll" tells of each frame what it
// took.

#include <fmt/format.h>

#include <QCoreApplication>
#include <QEvent>
#include <QMetaObject>
#include <QQuickItem>
#include <QQuickWindow>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <vector>

namespace {

constexpr double kStep = 72; // points in a frame, a row with its distance: 4,300 a second

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

struct Cost {
    double wallMs = 0;
    double cpuMs = 0; ///< Of the main thread.

    static Cost now()
    {
        timespec cpu{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &cpu);
        const auto wall = std::chrono::steady_clock::now().time_since_epoch();
        return {std::chrono::duration<double, std::milli>(wall).count(),
                static_cast<double>(cpu.tv_sec) * 1e3 + static_cast<double>(cpu.tv_nsec) / 1e6};
    }
    Cost operator-(const Cost &other) const { return {wallMs - other.wallMs, cpuMs - other.cpuMs}; }
    Cost operator+(const Cost &other) const { return {wallMs + other.wallMs, cpuMs + other.cpuMs}; }
};

class FirstFrame : public QObject {
public:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        auto *window = event->type() == QEvent::Expose && !m_window ? qobject_cast<QQuickWindow *>(object) : nullptr;
        if (window) {
            m_window = window;
            connect(window, &QQuickWindow::frameSwapped, this, &FirstFrame::frameShown);
        }
        if (object == m_window && event->type() == QEvent::UpdateRequest)
            m_frameBegin = Cost::now();
        return false;
    }

private:
    void frameShown()
    {
        if (m_isScrolling)
            return scroll();
        const QString wanted = qEnvironmentVariable("BRINDLE_WAIT_FOR");
        if (m_isDone || (!wanted.isEmpty() && !find(m_window->contentItem(), wanted)))
            return;
        m_isDone = true;
        fmt::print("frame {}\n", std::chrono::steady_clock::now().time_since_epoch().count());
        std::fflush(stdout);
        m_isScrolling = qEnvironmentVariableIsSet("BRINDLE_SCROLL");
        if (m_isScrolling)
            scrollOn();
    }

    /// What a frame takes: the change of the list's place, which makes the rows that come into sight, and the painting.
    void scroll()
    {
        m_frames.push_back(m_move + (Cost::now() - m_frameBegin));
        QQuickItem *const list = find(m_window->contentItem(), QStringLiteral("diskList"));
        if (list->property("contentY").toDouble() + list->height() < list->property("contentHeight").toDouble())
            return scrollOn();
        m_isScrolling = false;
        const auto worst = [this](double Cost::*kind) { return (*std::ranges::max_element(m_frames, {}, kind)).*kind; };
        const auto middle = [this](double Cost::*kind) {
            std::ranges::nth_element(m_frames, m_frames.begin() + static_cast<std::ptrdiff_t>(m_frames.size() / 2), {},
                                     kind);
            return m_frames[m_frames.size() / 2].*kind;
        };
        fmt::print("scroll {} {:.2f} {:.2f} {:.2f} {:.2f}\n", m_frames.size(), middle(&Cost::wallMs),
                   worst(&Cost::wallMs), middle(&Cost::cpuMs), worst(&Cost::cpuMs));
        std::fflush(stdout);
    }

    void scrollOn()
    {
        QQuickItem *const list = find(m_window->contentItem(), QStringLiteral("diskList"));
        const Cost before = Cost::now();
        list->setProperty("contentY", list->property("contentY").toDouble() + kStep);
        m_move = Cost::now() - before;
    }

    QQuickWindow *m_window = nullptr;
    bool m_isDone = false;
    bool m_isScrolling = false;
    Cost m_frameBegin;
    Cost m_move;
    std::vector<Cost> m_frames;
};

void watch()
{
    QCoreApplication::instance()->installEventFilter(new FirstFrame);
}

Q_COREAPP_STARTUP_FUNCTION(watch)

} // namespace

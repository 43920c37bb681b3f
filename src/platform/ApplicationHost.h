#pragma once

#include <functional>
#include <string>
#include <vector>

namespace brindle {

/// Decides at the moments of the program's life that its host tells it.
class ApplicationDelegate {
public:
    virtual ~ApplicationDelegate() = default;

    /// The event loop is about to run.
    virtual void applicationDidFinishLaunching() = 0;

    /// The user started the program again while it runs. True where it has dealt with that by a window.
    virtual bool applicationShouldHandleReopen(bool hasVisibleWindows) = 0;

    [[nodiscard]] virtual bool applicationShouldTerminateAfterLastWindowClosed() = 0;

    /// The program is asked to end. False where something has to reach its end first: it goes on then, and the delegate
    /// asks it to end again after that.
    [[nodiscard]] virtual bool applicationShouldTerminate() = 0;

    /// The last moment of the program; what it begins is not waited for.
    virtual void applicationWillTerminate() = 0;
};

/// A line of the program's menu, and what choosing it does.
struct MenuEntry {
    std::string title;
    std::string key = {}; ///< A lower-case letter or sign that does the same with Command held, on Linux Ctrl.
    bool isEnabled = true;
    std::function<void()> action;
};

using MenuGroup = std::vector<MenuEntry>; ///< A divider stands between two groups.

/// The running program as the desktop sees it. Main thread only.
///
/// Whoever runs the event loop tells finishLaunching(), reopen() and lastWindowClosed(); what follows from them is the
/// delegate's affair.
class ApplicationHost {
public:
    enum class ActivationPolicy {
        regular,   ///< Stands in the list of running programs and has a menu.
        accessory, ///< Stands in none.
    };

    virtual ~ApplicationHost() = default;

    /// Null for none: nobody decides then, and the program goes on until terminate().
    void setDelegate(ApplicationDelegate *delegate) { m_delegate = delegate; }

    /// To be called once, before the event loop runs.
    void finishLaunching();

    /// A second start of the program: brings the program to the front and tells the delegate.
    void reopen(bool hasVisibleWindows);

    /// The user has closed the last visible window. Ends the program where the delegate says so.
    void lastWindowClosed();

    /// Where the delegate lets it: tells the delegate that the program ends and then ends it, once; the calls after
    /// that do nothing. Returns, and the event loop does what was asked of it before.
    void terminate();

    virtual void setActivationPolicy(ActivationPolicy policy) = 0;

    /// Makes the program follow the system's appearance, where it had one of its own.
    virtual void followSystemAppearance() = 0;

    /// Brings the program in front of all others.
    virtual void activate() = 0;

    /// Replaces the whole menu of the program.
    virtual void setApplicationMenu(std::vector<MenuGroup> groups) = 0;

protected:
    /// Ends the event loop once it has done what was asked of it before.
    virtual void quit() = 0;

private:
    ApplicationDelegate *m_delegate = nullptr;
    bool m_isTerminating = false;
};

} // namespace brindle

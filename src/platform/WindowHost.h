#pragma once

#include <QObject>

#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// The program's windows. All lengths are in points, which are logical pixels. What is asked of a window that is gone
/// is passed over. Main thread only.
class WindowHost : public QObject {
    Q_OBJECT

public:
    enum class WindowID : unsigned {}; ///< Never given to another window.

    struct Window {
        WindowID id{};
        bool isVisible = false;
        bool hasContent = false;
        std::string title; ///< The one drawn inside its frame; the desktop may be told another.
    };

    /// Is asked when the user wants to close a window; outlives the host's windows.
    class Delegate {
    public:
        virtual ~Delegate() = default;

        /// Whether the window may close. Called before it closes, and not for close().
        [[nodiscard]] virtual bool windowShouldClose() = 0;
    };

    /// All windows of the program but its dialogs, the oldest first.
    [[nodiscard]] virtual std::vector<Window> windows() const = 0;

    /// The height of what panels and docks leave free on the main screen; nullopt where there is no screen.
    [[nodiscard]] virtual std::optional<double> visibleScreenHeight() const = 0;

    /// Makes the window of the application with its content, hidden: without title, standard buttons and visible
    /// frame, of a size that the user can't change. It is there in windows() with its content at once.
    virtual WindowID create(double width, double height) = 0;

    /// What is left to be done to the frame at the next turn of the event loop after create(): the user may drag the
    /// window by its background from now on, and \a delegate is asked when it is to be closed.
    virtual void finishStyling(WindowID window, Delegate &delegate) = 0;

    /// Closes the window and takes it off the screen without asking its delegate; its content is gone when this
    /// returns.
    virtual void close(WindowID window) = 0;

    virtual void center(WindowID window) = 0;

    /// Shows the window in front of the program's others and gives it the keyboard.
    virtual void makeKeyAndOrderFront(WindowID window) = 0;

    /// Gives the window the system's appearance anew and has all of it laid out and drawn again, its shadow too.
    virtual void redraw(WindowID window) = 0;

    /// Makes the window 500 wide and \a height high, where its top edge stays as far as the desktop lets a window place
    /// itself, and keeps the user from changing that.
    virtual void setHeight(WindowID window, double height, bool isAnimated) = 0;

Q_SIGNALS:
    /// A screen has come, gone or changed its size, its place or its scale.
    void screenParametersChanged();
};

} // namespace brindle

#pragma once

#include "platform/WindowHost.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace brindle {

/// Windows that nobody sees: the host notes what it is asked in a journal, which several fakes may share and which
/// outlives them, and a test opens and closes windows by hand.
class FakeWindowHost final : public WindowHost {
public:
    explicit FakeWindowHost(std::vector<std::string> &journal) : m_journal(journal) {}

    std::vector<Window> openWindows;
    std::optional<double> screenHeight = 1000;

    /// The user closes the window: its delegate is asked first, where it has one.
    void closeByUser(WindowID window)
    {
        if (!m_delegate || m_delegate->windowShouldClose())
            remove(window);
    }

    [[nodiscard]] std::vector<Window> windows() const override { return openWindows; }
    [[nodiscard]] std::optional<double> visibleScreenHeight() const override { return screenHeight; }
    WindowID create(double width, double height) override
    {
        m_journal.push_back(fmt::format("create {} x {}", width, height));
        openWindows.push_back({.id = WindowID{m_nextID++}, .hasContent = true});
        return openWindows.back().id;
    }
    void finishStyling(WindowID window, Delegate &delegate) override
    {
        m_delegate = &delegate;
        note("finish", window);
    }
    void close(WindowID window) override
    {
        note("close", window);
        remove(window);
    }
    void center(WindowID window) override { note("center", window); }
    void makeKeyAndOrderFront(WindowID window) override
    {
        note("make key", window);
        std::ranges::find(openWindows, window, &Window::id)->isVisible = true;
    }
    void redraw(WindowID window) override { note("redraw", window); }
    void setHeight(WindowID window, double height, bool isAnimated) override
    {
        m_journal.push_back(
            fmt::format("height {} {}{}", static_cast<unsigned>(window), height, isAnimated ? " animated" : ""));
    }

private:
    void note(const char *call, WindowID window)
    {
        m_journal.push_back(fmt::format("{} {}", call, static_cast<unsigned>(window)));
    }
    void remove(WindowID window)
    {
        std::erase_if(openWindows, [window](const Window &open) { return open.id == window; });
    }

    std::vector<std::string> &m_journal;
    unsigned m_nextID = 1;
    Delegate *m_delegate = nullptr;
};

} // namespace brindle

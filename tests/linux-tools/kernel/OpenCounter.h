#pragma once

#include <array>
#include <cstring>
#include <filesystem>
#include <map>
#include <stdexcept>
#include <string>

#include <sys/inotify.h>
#include <unistd.h>

namespace brindle::tools {

/// Counts how often the files of a directory are opened.
class OpenCounter {
public:
    explicit OpenCounter(const std::filesystem::path &directory) : m_inotify(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC))
    {
        if (m_inotify < 0 || ::inotify_add_watch(m_inotify, directory.c_str(), IN_OPEN) < 0)
            throw std::runtime_error("inotify doesn't work");
    }
    OpenCounter(const OpenCounter &) = delete;
    OpenCounter &operator=(const OpenCounter &) = delete;
    ~OpenCounter() { ::close(m_inotify); }

    [[nodiscard]] std::map<std::string, int> counts() const
    {
        std::map<std::string, int> found;
        alignas(inotify_event) std::array<char, 4096> events{};
        const ssize_t size = ::read(m_inotify, events.data(), events.size());
        for (ssize_t at = 0; at < size;) {
            inotify_event event{};
            std::memcpy(&event, events.data() + at, sizeof event);
            if (event.len > 0)
                ++found[events.data() + at + sizeof event];
            at += static_cast<ssize_t>(sizeof event + event.len);
        }
        return found;
    }

private:
    int m_inotify;
};

} // namespace brindle::tools

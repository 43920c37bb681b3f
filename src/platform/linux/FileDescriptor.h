#pragma once

#include <unistd.h>

#include <utility>

namespace brindle {

/// Owns one file descriptor and closes it at its end. Empty below 0, as the system's calls report a failure.
class FileDescriptor {
public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : m_descriptor(descriptor) {}
    FileDescriptor(FileDescriptor &&other) noexcept : m_descriptor(std::exchange(other.m_descriptor, -1)) {}
    FileDescriptor &operator=(FileDescriptor &&other) noexcept
    {
        std::swap(m_descriptor, other.m_descriptor);
        return *this;
    }
    ~FileDescriptor()
    {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }

    explicit operator bool() const { return m_descriptor >= 0; }
    [[nodiscard]] int value() const { return m_descriptor; }

    /// Closes it before its end; false where the system has a complaint, which errno names.
    [[nodiscard]] bool close() { return ::close(std::exchange(m_descriptor, -1)) == 0; }

private:
    int m_descriptor = -1;
};

} // namespace brindle

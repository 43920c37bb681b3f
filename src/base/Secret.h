#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace brindle {

namespace detail {

/// Pages of their own, kept out of the swap space where the system allows it (RLIMIT_MEMLOCK).
[[nodiscard]] void *allocateLocked(std::size_t size);

/// Overwrites the pages before they go back to the system.
void wipeAndFree(void *memory, std::size_t size) noexcept;

template <typename T>
struct LockedAllocator {
    using value_type = T;

    T *allocate(std::size_t count) { return static_cast<T *>(allocateLocked(count * sizeof(T))); }
    void deallocate(T *memory, std::size_t count) noexcept { wipeAndFree(memory, count * sizeof(T)); }
    bool operator==(const LockedAllocator &) const = default;
};

} // namespace detail

/// Bytes that nobody else may see, such as a password. No copy of them stays in memory once all Secrets that hold them
/// have ended; whoever takes a view of them copies nothing out of it.
class Secret {
public:
    Secret() = default;
    explicit Secret(std::string_view bytes) : m_bytes(bytes.begin(), bytes.end()) {}

    [[nodiscard]] bool isEmpty() const { return m_bytes.empty(); }
    [[nodiscard]] std::string_view view() const { return {m_bytes.data(), m_bytes.size()}; }

    /// Where the bytes lie, for a reader of a descriptor or a key to fill in after resize().
    [[nodiscard]] char *data() { return m_bytes.data(); }
    void resize(std::size_t size) { m_bytes.resize(size); }
    void append(std::string_view bytes) { m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end()); }

    bool operator==(const Secret &) const = default;

private:
    std::vector<char, detail::LockedAllocator<char>> m_bytes; // a string keeps short texts within itself
};

} // namespace brindle

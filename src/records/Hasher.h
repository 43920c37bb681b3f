#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

namespace brindle {

/// Folds values, fed one after the other, into one hash.
class Hasher {
public:
    template <typename T>
    Hasher &feed(const T &value)
    {
        // The golden ratio in 64 bits: an odd factor whose bits are spread evenly. The shift brings the high bits,
        // which the product mixes best, back to the low ones.
        m_value = (m_value ^ std::hash<T>{}(value)) * 0x9E3779B97F4A7C15ULL;
        m_value ^= m_value >> 32U;
        return *this;
    }

    [[nodiscard]] std::size_t value() const { return static_cast<std::size_t>(m_value); }

private:
    std::uint64_t m_value = 0;
};

} // namespace brindle

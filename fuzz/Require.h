#pragma once

#include <cstdio>
#include <cstdlib>

namespace brindle {

/// Ends the fuzzer with a fault where what must hold of every input doesn't.
inline void require(bool holds, const char *what)
{
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
}

} // namespace brindle

#include "base/Secret.h"

#include <cstring>
#include <new>

#include <sys/mman.h>

namespace brindle::detail {

void *allocateLocked(std::size_t size)
{
    void *memory = mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED)
        throw std::bad_alloc();
    mlock(memory, size);
    return memory;
}

void wipeAndFree(void *memory, std::size_t size) noexcept
{
    std::memset(memory, 0, size); // the compiler can't leave it out: the system's call below may read the bytes
    munmap(memory, size);
}

} // namespace brindle::detail

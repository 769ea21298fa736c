#include "platform/StartupHeap.h"

#include <cstdint>
#include <cstdlib> // names the C library, for the check below

#if defined(__linux__) && defined(__GLIBC__)
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>
#define TB_GLIBC_HEAP 1
#endif

void reserveStartupHeap()
{
#ifdef TB_GLIBC_HEAP
    static bool reserved = false;
    if (reserved)
        return;
    reserved = true;

    constexpr std::uintptr_t kLargePage = std::uintptr_t(2) << 20;
    constexpr std::uintptr_t kReserved = 4 * kLargePage;
    mallopt(M_MMAP_THRESHOLD, 32 << 20);
    mallopt(M_TRIM_THRESHOLD, 64 << 20);

    const void* const end = sbrk(0);
    if (end == reinterpret_cast<void*>(-1))
        return;
    const auto base = reinterpret_cast<std::uintptr_t>(end);
    const std::uintptr_t first = (base + kLargePage - 1) & ~(kLargePage - 1);
    // Grows the heap past the large pages; freed at once, the space stays at the heap's top and
    // the next blocks are cut from it. Volatile so the pair is not optimised away.
    void* volatile grown = std::malloc(first - base + kReserved);
    std::free(grown);
    // A heap that could not grow in place (another mapping in the way, a replaced allocator)
    // is left as it is.
    if (reinterpret_cast<std::uintptr_t>(sbrk(0)) < first + kReserved)
        return;
    madvise(reinterpret_cast<void*>(first), kReserved, MADV_HUGEPAGE);
#endif
}

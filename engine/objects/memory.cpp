#include "frame/host/memory.h"

#include "engine/objects/arena.h"

#include <cstdlib>

#if defined(__SANITIZE_ADDRESS__)
#define ENGINE_SYSTEM_ALLOCATOR 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(memory_sanitizer)
#define ENGINE_SYSTEM_ALLOCATOR 1
#endif
#endif

namespace {

struct FailurePlan {
    int after = 0;
    int count = 0;
};
FailurePlan g_failures;

/// Whether the plan makes this allocation fail; moves the plan on by one.
bool FailsNow() noexcept {
    if (g_failures.count == 0) return false;
    if (g_failures.after > 0) {
        --g_failures.after;
        return false;
    }
    --g_failures.count;
    return true;
}

#ifndef ENGINE_SYSTEM_ALLOCATOR
qn::Arena& ObjectArena() noexcept {
    static qn::Arena arena;
    return arena;
}
#endif

}  // namespace

namespace mem {

void* allocate(std::size_t size) noexcept {
    if (FailsNow()) return nullptr;
#ifdef ENGINE_SYSTEM_ALLOCATOR
    return std::malloc(size ? size : 1);
#else
    return ObjectArena().Allocate(size);
#endif
}

void free(void* storage) noexcept {
    if (!storage) return;
#ifdef ENGINE_SYSTEM_ALLOCATOR
    std::free(storage);
#else
    ObjectArena().Free(storage);
#endif
}

void FailAllocations(int after, int count) noexcept {
    g_failures = {after > 0 ? after : 0, count > 0 ? count : 0};
}

}  // namespace mem

namespace qn {

int ThreadsafeIncrement(volatile int* count) noexcept {
    return __atomic_add_fetch(count, 1, __ATOMIC_RELAXED);
}
int ThreadsafeDecrement(volatile int* count) noexcept {
    return __atomic_sub_fetch(count, 1, __ATOMIC_ACQ_REL);
}

}  // namespace qn

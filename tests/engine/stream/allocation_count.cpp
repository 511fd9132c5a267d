#include "tests/engine/stream/allocation_count.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<bool> g_counting{false};
std::atomic<std::size_t> g_total{0};
std::atomic<std::size_t> g_largest{0};

}  // namespace

// Takes the place of the library's own for this program and all libraries that it loads.
void* operator new(std::size_t size) {
    if (g_counting) {
        g_total += size;
        g_largest = std::max(g_largest.load(), size);
    }
    if (void* storage = std::malloc(size ? size : 1)) return storage;
    throw std::bad_alloc();
}
void* operator new[](std::size_t size) {
    return operator new(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    try {
        return operator new(size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, const std::nothrow_t& mark) noexcept {
    return operator new(size, mark);
}
void operator delete(void* storage) noexcept {
    std::free(storage);
}
void operator delete[](void* storage) noexcept {
    std::free(storage);
}
void operator delete(void* storage, std::size_t) noexcept {
    std::free(storage);
}
void operator delete[](void* storage, std::size_t) noexcept {
    std::free(storage);
}

namespace qn::test {

AllocationCount::AllocationCount() {
    g_total = 0;
    g_largest = 0;
    g_counting = true;
}

AllocationCount::~AllocationCount() {
    g_counting = false;
}

std::size_t AllocationCount::GetTotal() const {
    return g_total;
}

std::size_t AllocationCount::GetLargest() const {
    return g_largest;
}

}  // namespace qn::test

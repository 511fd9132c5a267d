#pragma once

#include <cstddef>

namespace mem {

/// Storage for one object, aligned for any type; null when memory is exhausted or `FailNext` asked for it.
/// Fresh storage has rising addresses, so that pointer order is creation order; freed slots are reused by
/// size.
void* allocate(std::size_t size) noexcept;
/// Gives back what `allocate` handed out; null does nothing.
void free(void* storage) noexcept;

/// Makes the allocations fail that follow the next `after` ones, `count` of them (tests of exhausted memory).
void FailAllocations(int after, int count) noexcept;

}  // namespace mem

namespace qn {

/// Atomic counting of weak cells; both return the new value.
int ThreadsafeIncrement(volatile int* count) noexcept;
int ThreadsafeDecrement(volatile int* count) noexcept;

}  // namespace qn

#pragma once

#include <cstddef>

namespace qn::test {

/// Counts what this program allocates with `new` while it lives. One at a time.
class AllocationCount {
public:
    AllocationCount();
    ~AllocationCount();
    AllocationCount(const AllocationCount&) = delete;
    AllocationCount& operator=(const AllocationCount&) = delete;

    /// Bytes, freed ones included.
    std::size_t GetTotal() const;
    /// Bytes of the largest single allocation.
    std::size_t GetLargest() const;
};

}  // namespace qn::test

#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace qn {

/// The store behind all objects: one reserved range of addresses. Fresh slots rise through the range whatever
/// their size; freed slots wait in a list of their size class, last in, first out. Nothing goes back to the
/// system.
class Arena {
public:
    constexpr Arena() = default;
    Arena(const Arena&) = delete;
    Arena& operator=(const Arena&) = delete;

    /// Storage aligned for any type, or null when the range or the machine's memory is used up.
    void* Allocate(std::size_t size) noexcept;
    /// Expects what `Allocate` gave.
    void Free(void* storage) noexcept;

private:
    // Slots up to this size are classed in steps of 16 bytes, larger ones in four steps for each power of
    // two.
    static constexpr std::size_t kFineLimit = 1024;
    static constexpr std::size_t kFineClasses = kFineLimit / 16;
    static constexpr std::size_t kCoarseClasses = 4 * 40;

    struct Slot {
        Slot* next;
    };
    struct SizeClass {
        std::uint32_t index;
        std::size_t bytes;  // of the whole slot, header included
    };

    static SizeClass ClassOf(std::size_t size) noexcept;
    void* Fresh(const SizeClass& wanted) noexcept;
    bool Reserve() noexcept;
    bool Commit(std::uintptr_t end) noexcept;

    std::uintptr_t next_ = 0;       // where the next fresh slot's header goes, 8 below a multiple of 16
    std::uintptr_t committed_ = 0;  // end of the usable part
    std::uintptr_t end_ = 0;        // end of the reserved range
    std::array<Slot*, kFineClasses + kCoarseClasses> free_{};
};

}  // namespace qn

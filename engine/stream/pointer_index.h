#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace qn {

/// Numbers of objects by address: a table with open addressing, for a save asks it for each reference.
class PointerIndex {
public:
    static constexpr std::uint32_t kNone = 0xffff'ffff;

    /// The number that was kept for the address, else kNone.
    std::uint32_t Find(const void* address) const {
        return slots_.empty() ? kNone : slots_[PlaceOf(address)].number;
    }
    /// Keeps the number, which is not kNone, for an address without one.
    void Insert(const void* address, std::uint32_t number) {
        if (2 * (count_ + 1) > slots_.size()) Grow();
        slots_[PlaceOf(address)] = {address, number};
        ++count_;
    }
    void Clear() {
        slots_.clear();
        count_ = 0;
    }

private:
    struct Slot {
        const void* address = nullptr;
        std::uint32_t number = kNone;
    };
    static constexpr std::size_t kFirstSize = 64;  // a power of two, like all sizes

    /// The slot of the address, or the empty one where it belongs. Pages are spread over the table, and
    /// within a page neighbours stay neighbours, for objects are mostly met in the order in which they were
    /// made.
    std::size_t PlaceOf(const void* address) const {
        constexpr int kPageBits = 12, kGrainBits = 5;  // of addresses; objects are larger than a grain
        constexpr std::uint64_t kSpread = 0x9e3779b97f4a7c15;
        const auto word = reinterpret_cast<std::uintptr_t>(address);
        const std::size_t page = (word >> kPageBits) * kSpread >> (64 - std::countr_zero(slots_.size()));
        const std::size_t grain = (word >> kGrainBits) & ((1u << (kPageBits - kGrainBits)) - 1);
        std::size_t place = (page + grain) & (slots_.size() - 1);
        while (slots_[place].address && slots_[place].address != address)
            place = (place + 1) & (slots_.size() - 1);
        return place;
    }

    void Grow() {
        std::vector<Slot> old(slots_.empty() ? kFirstSize : 2 * slots_.size());
        old.swap(slots_);
        for (const Slot& slot : old)
            if (slot.address) slots_[PlaceOf(slot.address)] = slot;
    }

    std::vector<Slot> slots_;
    std::size_t count_ = 0;
};

}  // namespace qn

#pragma once

#include "frame/host/collections.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace qn {

/// From the hash of a key to its row: open addressing, probed in steps of one. Stands beside the rows of a
/// map that outgrew a plain search. Also remembers which rows are holes.
struct VarMap::Index {
    static constexpr std::size_t kPlainRows = 8;  ///< up to here a map needs no index

    static std::uint32_t Fold(std::size_t hash) noexcept {
        return static_cast<std::uint32_t>(hash ^ hash >> 32);
    }

    /// The row for which `same(row)` holds, or -1.
    template <class Same>
    int Find(std::uint32_t hash, Same&& same) const {
        for (std::size_t at = hash & mask_;; at = (at + 1) & mask_) {
            const Slot& slot = slots_[at];
            if (slot.row == kFree) return -1;
            if (slot.hash == hash && slot.row != kGone && same(slot.row)) return slot.row;
        }
    }
    /// Expects that the key has no row yet.
    void Insert(std::uint32_t hash, int row);
    void Erase(std::uint32_t hash, int row);
    /// Makes room for `count` rows in all.
    void Reserve(std::size_t count);
    /// Gives each row the number `renamed[row]`.
    void Rename(const std::vector<int>& renamed);

    std::vector<int> holes;  ///< rows that were removed and are still in place

private:
    static constexpr int kFree = -1;
    static constexpr int kGone = -2;
    struct Slot {
        std::uint32_t hash;
        int row;
    };

    void Rebuild(std::size_t capacity);
    void Place(const Slot& slot) noexcept;

    std::vector<Slot> slots_;
    std::size_t mask_ = 0;
    std::size_t used_ = 0;  // slots that are not free
    std::size_t live_ = 0;
};

}  // namespace qn

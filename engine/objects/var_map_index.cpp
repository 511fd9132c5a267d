#include "engine/objects/var_map_index.h"

#include <bit>
#include <utility>

namespace qn {

void VarMap::Index::Insert(std::uint32_t hash, int row) {
    Reserve(live_ + 1);
    Place({hash, row});
    ++used_, ++live_;
}

void VarMap::Index::Erase(std::uint32_t hash, int row) {
    for (std::size_t at = hash & mask_;; at = (at + 1) & mask_) {
        Slot& slot = slots_[at];
        if (slot.row == kFree) return;
        if (slot.row != row) continue;
        slot.row = kGone;
        --live_;
        return;
    }
}

void VarMap::Index::Reserve(std::size_t count) {
    // At most two thirds of the slots are in use, those of removed rows included.
    if ((used_ + (count - live_)) * 3 <= slots_.size() * 2 && count >= live_) return;
    Rebuild(std::bit_ceil(count * 2 + 2));
}

void VarMap::Index::Rename(const std::vector<int>& renamed) {
    for (Slot& slot : slots_)
        if (slot.row >= 0) slot.row = renamed[static_cast<std::size_t>(slot.row)];
    Rebuild(slots_.size());
}

void VarMap::Index::Rebuild(std::size_t capacity) {
    const std::vector<Slot> old = std::exchange(slots_, std::vector<Slot>(capacity, Slot{0, kFree}));
    mask_ = capacity - 1;
    used_ = live_;
    for (const Slot& slot : old)
        if (slot.row >= 0) Place(slot);
}

void VarMap::Index::Place(const Slot& slot) noexcept {
    std::size_t at = slot.hash & mask_;
    while (slots_[at].row != kFree)
        at = (at + 1) & mask_;
    slots_[at] = slot;
}

}  // namespace qn

#pragma once

#include "frame/host/counted.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace qn::graph {

/// Which elements belong to a table, each held with a count; never walked. One block of pointers, found by
/// their hash: a table of a million uses has no node for each of them.
template <class T>
class ElementPool {
public:
    bool empty() const noexcept { return size_ == 0; }
    std::size_t size() const noexcept { return size_; }
    std::size_t count(const Counted<T>& element) const noexcept {
        return element && !slots_.empty() && slots_[SlotOf(element.Get())] ? 1 : 0;
    }
    /// Whether the element is new; null never is.
    bool insert(const Counted<T>& element) {
        if (!element) return false;
        if ((size_ + 1) * 3 > slots_.size() * 2) Grow();
        Counted<T>& slot = slots_[SlotOf(element.Get())];
        if (slot) return false;
        slot = element;
        ++size_;
        return true;
    }
    /// The pool is empty before the first element goes.
    void clear() noexcept {
        size_ = 0;
        const auto gone = std::exchange(slots_, {});
    }

private:
    static constexpr std::size_t kFirstSlots = 16;

    /// Addresses of elements made one after the other lie evenly apart, which one multiplication would keep
    /// and so pile them up: a second one scatters them.
    static std::uint64_t HashOf(const T* element) noexcept {
        constexpr std::uint64_t kFirst = 0x9e3779b97f4a7c15, kSecond = 0xd6e8feb86659fd93;
        std::uint64_t hash = reinterpret_cast<std::uintptr_t>(element) * kFirst;
        hash ^= hash >> 32;
        return hash * kSecond;
    }
    /// Where the element stands, or the free slot where it would. There is always a free one.
    std::size_t SlotOf(const T* element) const noexcept {
        std::size_t slot = HashOf(element) >> (64 - std::countr_zero(slots_.size()));
        while (slots_[slot] && slots_[slot].Get() != element)
            slot = (slot + 1) & (slots_.size() - 1);
        return slot;
    }
    void Grow() {
        auto old =
            std::exchange(slots_, std::vector<Counted<T>>(slots_.empty() ? kFirstSlots : slots_.size() * 2));
        for (Counted<T>& element : old) {
            if (!element) continue;
            Counted<T>& slot = slots_[SlotOf(element.Get())];  // found before the element moves away
            slot = std::move(element);
        }
    }

    std::vector<Counted<T>> slots_;
    std::size_t size_ = 0;
};

}  // namespace qn::graph

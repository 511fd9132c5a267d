#pragma once

#include "frame/host/string.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <utility>
#include <vector>

namespace qn::graph {

/// Values by text, never walked. Entries stand in one block in the order in which they came; a table of
/// hashes and places beside it finds them, so that growing and missing touch no text. Entries move when
/// others come or go.
template <class Value>
class TextIndex {
public:
    struct Entry {
        String first;
        Value second{};
    };

    bool empty() const noexcept { return entries_.empty(); }
    std::size_t size() const noexcept { return entries_.size(); }
    /// The entry, or null, which is `end()`.
    Entry* find(const String& text) noexcept { return const_cast<Entry*>(std::as_const(*this).find(text)); }
    const Entry* find(const String& text) const noexcept {
        if (slots_.empty()) return nullptr;
        const Slot& slot = slots_[SlotOf(text, HashOf(text))];
        return slot.place ? &entries_[slot.place - 1] : nullptr;
    }
    static constexpr std::nullptr_t end() noexcept { return nullptr; }
    std::size_t count(const String& text) const noexcept { return find(text) ? 1 : 0; }
    Value& at(const String& text) {
        if (Entry* entry = find(text)) return entry->second;
        throw std::out_of_range("no such text");
    }
    Value& operator[](const String& text) { return try_emplace(text).first->second; }

    /// The entry, and whether it is new.
    std::pair<Entry*, bool> try_emplace(const String& text) {
        if ((entries_.size() + 1) * 3 > slots_.size() * 2) Grow();
        const std::uint32_t hash = HashOf(text);
        Slot& slot = slots_[SlotOf(text, hash)];
        if (slot.place) return {&entries_[slot.place - 1], false};
        entries_.push_back({text});
        slot = {hash, static_cast<std::uint32_t>(entries_.size())};
        return {&entries_.back(), true};
    }
    /// The last entry takes the place of the one that goes.
    void erase(Entry* entry) {
        RemoveSlot(SlotOf(entry->first, HashOf(entry->first)));
        Entry& last = entries_.back();
        if (entry != &last) {
            slots_[SlotOf(last.first, HashOf(last.first))].place =
                static_cast<std::uint32_t>(entry - entries_.data()) + 1;
            std::swap(*entry, last);
        }
        entries_.pop_back();
    }
    /// The index is empty before the first value goes.
    void clear() noexcept {
        slots_.clear();
        const auto gone = std::exchange(entries_, {});
    }

private:
    struct Slot {
        std::uint32_t hash = 0;
        std::uint32_t place = 0;  ///< one more than the entry's; 0: free
    };
    static constexpr std::size_t kFirstSlots = 16;

    static std::uint32_t HashOf(const String& text) noexcept {
        return static_cast<std::uint32_t>((text.Hash() * 0x9e3779b97f4a7c15ull) >> 32);
    }
    std::size_t Next(std::size_t slot) const noexcept { return (slot + 1) & (slots_.size() - 1); }
    std::size_t Home(std::uint32_t hash) const noexcept {
        return hash >> (32 - std::countr_zero(slots_.size()));
    }
    /// Where the text stands, or the free slot where it would. There is always a free one.
    std::size_t SlotOf(const String& text, std::uint32_t hash) const noexcept {
        std::size_t slot = Home(hash);
        while (slots_[slot].place &&
               (slots_[slot].hash != hash || entries_[slots_[slot].place - 1].first != text))
            slot = Next(slot);
        return slot;
    }
    void Grow() {
        const auto old =
            std::exchange(slots_, std::vector<Slot>(slots_.empty() ? kFirstSlots : slots_.size() * 2));
        for (const Slot& slot : old) {
            if (!slot.place) continue;
            std::size_t to = Home(slot.hash);
            while (slots_[to].place)
                to = Next(to);
            slots_[to] = slot;
        }
    }
    /// Moves those back that stand behind only because the slot was taken.
    void RemoveSlot(std::size_t hole) noexcept {
        for (std::size_t slot = Next(hole); slots_[slot].place; slot = Next(slot)) {
            const std::size_t mask = slots_.size() - 1;
            const std::size_t wanted = (slot - Home(slots_[slot].hash)) & mask;
            if (wanted >= ((slot - hole) & mask)) {
                slots_[hole] = slots_[slot];
                hole = slot;
            }
        }
        slots_[hole] = Slot{};
    }

    std::vector<Entry> entries_;
    std::vector<Slot> slots_;
};

}  // namespace qn::graph

#include "engine/objects/arena.h"

#include <algorithm>
#include <bit>

#include <sys/mman.h>

namespace qn {
namespace {

constexpr std::size_t kHeader = 8;                           // holds the index of the slot's size class
constexpr std::size_t kLargestRange = std::size_t{1} << 40;  // addresses only, no memory
constexpr std::size_t kSmallestRange = std::size_t{1} << 28;
constexpr std::size_t kCommitStep = std::size_t{4} << 20;
constexpr std::size_t kLargestObject = std::size_t{1} << 38;

std::uint32_t& HeaderOf(void* storage) noexcept {
    return *reinterpret_cast<std::uint32_t*>(static_cast<char*>(storage) - kHeader);
}

}  // namespace

// A slot's bytes are a multiple of 16 and its header stands 8 below one, so its storage is aligned to 16.
Arena::SizeClass Arena::ClassOf(std::size_t size) noexcept {
    const std::size_t bytes = (size + kHeader + 15) / 16 * 16;
    if (bytes <= kFineLimit) return {static_cast<std::uint32_t>(bytes / 16 - 1), bytes};
    const int power = std::bit_width(bytes - 1) - 1;  // 2^power < bytes <= 2^(power + 1)
    const std::size_t step = std::size_t{1} << (power - 2);
    const std::size_t quarter = (bytes - (std::size_t{1} << power) + step - 1) / step;  // 1 to 4
    const std::size_t coarse = static_cast<std::size_t>(power - 10) * 4 + quarter - 1;
    return {static_cast<std::uint32_t>(kFineClasses + coarse), (std::size_t{1} << power) + quarter * step};
}

void* Arena::Allocate(std::size_t size) noexcept {
    if (size > kLargestObject) return nullptr;
    const SizeClass wanted = ClassOf(size);
    Slot*& list = free_[wanted.index];
    if (!list) return Fresh(wanted);
    Slot* slot = list;
    list = slot->next;
    return slot;
}

void Arena::Free(void* storage) noexcept {
    Slot*& list = free_[HeaderOf(storage)];
    auto* slot = static_cast<Slot*>(storage);
    slot->next = list;
    list = slot;
}

void* Arena::Fresh(const SizeClass& wanted) noexcept {
    if (!end_ && !Reserve()) return nullptr;
    if (wanted.bytes > end_ - next_) return nullptr;
    const std::uintptr_t after = next_ + wanted.bytes;
    if (after > committed_ && !Commit(after)) return nullptr;
    void* storage = reinterpret_cast<void*>(next_ + kHeader);
    HeaderOf(storage) = wanted.index;
    next_ = after;
    return storage;
}

bool Arena::Reserve() noexcept {
    for (std::size_t range = kLargestRange; range >= kSmallestRange; range /= 2) {
        void* start = mmap(nullptr, range, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
        if (start == MAP_FAILED) continue;
        committed_ = reinterpret_cast<std::uintptr_t>(start);
        next_ = committed_ + kHeader;
        end_ = committed_ + range;
        return true;
    }
    return false;
}

bool Arena::Commit(std::uintptr_t end) noexcept {
    const std::uintptr_t wanted = std::min(end_, (end + kCommitStep - 1) / kCommitStep * kCommitStep);
    if (mprotect(reinterpret_cast<void*>(committed_), wanted - committed_, PROT_READ | PROT_WRITE) != 0)
        return false;
    committed_ = wanted;
    return true;
}

}  // namespace qn

#include "frame/host/memory.h"
#include "engine/objects/arena.h"
#include "frame/host/counted.h"
#include "frame/host/reference_source.h"

#include <gtest/gtest.h>
#include <cstdint>
#include <cstring>
#include <map>
#include <random>
#include <vector>

namespace qn {
namespace {

class Thing : public ReferenceSource {};

const std::size_t kSizes[] = {0,    1,    8,    9,    24,    25,      100,          1000,
                              1016, 1017, 1024, 5000, 65536, 1 << 20, (1 << 20) + 1};

TEST(Arena, GivesRisingAddressesWhateverTheSize) {
    static Arena arena;
    std::uintptr_t last = 0;
    for (int round = 0; round < 3; ++round)
        for (const std::size_t size : kSizes) {
            const auto place = reinterpret_cast<std::uintptr_t>(arena.Allocate(size));
            EXPECT_GT(place, last);
            EXPECT_EQ(place % 16, 0u);
            last = place + size;
        }
}

TEST(Arena, ReusesAFreedSlotOfTheSizeClassLastInFirstOut) {
    static Arena arena;
    for (const std::size_t size : kSizes) {
        void* const first = arena.Allocate(size);
        void* const second = arena.Allocate(size);
        arena.Free(first);
        arena.Free(second);
        EXPECT_EQ(arena.Allocate(size), second);
        EXPECT_EQ(arena.Allocate(size), first);
    }
    void* const small = arena.Allocate(20);
    arena.Free(small);
    EXPECT_NE(arena.Allocate(40), small);
    EXPECT_EQ(arena.Allocate(24), small);
}

TEST(Arena, RefusesWhatNoMachineHas) {
    static Arena arena;
    EXPECT_EQ(arena.Allocate(static_cast<std::size_t>(-1)), nullptr);
    EXPECT_EQ(arena.Allocate(std::size_t{1} << 50), nullptr);
    EXPECT_NE(arena.Allocate(16), nullptr);
}

TEST(Arena, KeepsWhatIsWrittenApart) {
    static Arena arena;
    std::mt19937 random(21);
    std::map<unsigned char*, std::pair<std::size_t, unsigned char>> slots;
    for (int i = 0; i < 20000; ++i) {
        if (slots.empty() || random() % 3) {
            const std::size_t size = random() % (random() % 50 ? 200 : 5000);
            auto* place = static_cast<unsigned char*>(arena.Allocate(size));
            const auto mark = static_cast<unsigned char>(random());
            if (size) std::memset(place, mark, size);
            ASSERT_TRUE(slots.emplace(place, std::pair(size, mark)).second);
        } else {
            auto slot = slots.begin();
            std::advance(slot, random() % std::min<std::size_t>(slots.size(), 20));
            for (std::size_t k = 0; k < slot->second.first; ++k)
                ASSERT_EQ(slot->first[k], slot->second.second);
            arena.Free(slot->first);
            slots.erase(slot);
        }
    }
}

TEST(Memory, FreesNullWithoutDoingAnything) {
    mem::free(nullptr);
    void* const storage = mem::allocate(0);
    EXPECT_NE(storage, nullptr);
    mem::free(storage);
}

#ifndef ASSEMBLY_SANITIZERS
TEST(Memory, OrdersFreshObjectsByTheirCreation) {
    std::vector<Counted<Thing>> things;
    // Freed slots of other tests come first; what is fresh rises.
    for (int i = 0; i < 5000; ++i)
        things.push_back(Make<Thing>());
    for (std::size_t i = 4001; i < things.size(); ++i)
        EXPECT_LT(things[i - 1].Get(), things[i].Get());
}
#endif

TEST(Memory, FailsTheAllocationsThatATestAskedFor) {
    mem::FailAllocations(1, 2);
    const auto first = Make<Thing>(), second = Make<Thing>(), third = Make<Thing>(), fourth = Make<Thing>();
    EXPECT_TRUE(first);
    EXPECT_FALSE(second);
    EXPECT_FALSE(third);
    EXPECT_TRUE(fourth);
}

TEST(Memory, CountsThreadsafe) {
    volatile int count = 1;
    EXPECT_EQ(ThreadsafeIncrement(&count), 2);
    EXPECT_EQ(ThreadsafeDecrement(&count), 1);
    EXPECT_EQ(ThreadsafeDecrement(&count), 0);
}

}  // namespace
}  // namespace qn

#include "tests/engine/stream/knot.h"

#include "engine/stream/block.h"
#include "engine/stream/container.h"
#include "engine/stream/limits.h"
#include "engine/stream/object_file.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

TEST(StreamScale, SavesAndLoadsAChainOfHundredThousandLevels) {
    constexpr int kLevels = 100'000;
    auto root = MakeKnot("leaf");
    for (int i = 1; i < kLevels; ++i) {
        auto parent = MakeKnot("level");
        parent->Link(root.Get());
        root = parent;
    }

    const auto copy = Copied(*root);

    int levels = 1;
    for (const Knot* knot = copy.Get(); !knot->links.empty(); knot = knot->At(0))
        ++levels;
    EXPECT_EQ(levels, kLevels);
}

TEST(StreamScale, SavesAndLoadsAHundredThousandChildren) {
    constexpr std::size_t kChildren = 100'000;
    const auto root = MakeKnot("root");
    for (std::size_t i = 0; i < kChildren; ++i)
        root->Link(MakeKnot(std::to_string(i)).Get());

    const auto copy = Copied(*root);

    ASSERT_EQ(copy->links.size(), kChildren);
    EXPECT_EQ(copy->At(kChildren - 1)->name, std::to_string(kChildren - 1));
}

TEST(StreamScale, SavesAndLoadsDeeplyNestedCollections) {
    Var value = "innermost";
    for (int i = 0; i < 10'000; ++i) {
        Var outer;
        outer.At(0) = value;
        value = outer;
    }

    const auto copy = Copied(*value.ToMap());

    Var inner(copy.Get(), 1);
    while (const Var* next = inner.Lookup(0)) {
        const Var step(*next);
        inner = step;
    }
    EXPECT_EQ(inner.ToText(), String(L"innermost"));
}

TEST(StreamScale, KeepsMetadataOfMetadataOfMetadata) {
    const auto root = MakeKnot("root");
    Counted<VarMap> map = VarMap::Create();
    map->At(1) = Var("last");
    for (int i = 0; i < 10'000; ++i) {
        const auto outer = VarMap::Create();
        outer->At(1) = Var(i);
        outer->SetMetadata(map.Get());
        map = outer;
    }
    root->SetMetadata(map.Get());

    const auto copy = Copied(*root);

    int depth = 0;
    for (const VarMap* next = copy->GetMetadata(false); next; next = next->GetMetadata(false))
        ++depth;
    EXPECT_EQ(depth, 10'001);
}

TEST(StreamScale, CompressesRepetitionButNeverBeyondTheAllowedRatio) {
    const auto root = MakeKnot(std::string(10'000'000, 'a'));

    const auto bytes = Saved(*root);

    EXPECT_LT(bytes.size(), 10'000'000 / scene_file_limits::kLargestRatio + 10'000);
    EXPECT_GT(bytes.size(), 10'000'000 / scene_file_limits::kLargestRatio);
    EXPECT_EQ(CountedCast<Knot>(Loaded(bytes))->name, root->name);
}

TEST(StreamScale, StoresNoiseAsItIs) {
    std::string noise;
    for (std::uint32_t seed = 1; noise.size() < 100'000; seed = seed * 1664525 + 1013904223)
        noise += static_cast<char>(seed >> 24);
    const auto root = MakeKnot(noise);

    const auto bytes = Saved(*root);

    EXPECT_NE(bytes.find(noise), std::string::npos);
    EXPECT_EQ(CountedCast<Knot>(Loaded(bytes))->name, noise);
}

TEST(StreamScale, SpreadsBodiesOverBlocks) {
    const auto root = MakeKnot("root");
    for (int i = 0; i < 20; ++i)
        root->Link(MakeKnot(std::string(300'000, static_cast<char>('a' + i))).Get());
    root->Link(MakeKnot(std::string(3'000'000, 'z')).Get());
    root->Link(MakeKnot("last").Get());

    const auto bytes = Saved(*root);

    scene_file::Container container;
    scene_file::Fault fault;
    ASSERT_TRUE(scene_file::ReadContainer(bytes, true, container, fault)) << fault.cause;
    EXPECT_EQ(container.bodies.size(), 7u);
    const auto copy = CountedCast<Knot>(Loaded(bytes));
    EXPECT_EQ(copy->At(20)->name.size(), 3'000'000u);
    EXPECT_EQ(copy->At(21)->name, "last");
    EXPECT_EQ(Saved(*copy), bytes);
}

}  // namespace
}  // namespace qn::test

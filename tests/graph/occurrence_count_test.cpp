#include "graph/occurrence_count.h"

#include "tests/graph/graph_support.h"
#include "tests/support/assembly.h"

namespace qn::test {
namespace {

using graph::CountOccurrences;

constexpr std::int64_t kPlenty = 1'000'000;

TEST(OccurrenceCount, CountsAUseAsOftenAsItsDefinitionOccurs) {
    const Assembly car(
        AssemblyBuilder("car").Child("axle", 2).Child("wheel").Under("axle", "wheel", 2).Shape(),
        {.table = false});
    EXPECT_EQ(CountOccurrences(*car.Root(), kPlenty), 2 + 1 + 2 * 2);
}

TEST(OccurrenceCount, OfADefinitionWithoutUsesIsNought) {
    EXPECT_EQ(CountOccurrences(*MakeReference(), kPlenty), 0);
}

TEST(OccurrenceCount, SaysNoMoreThanThatThereAreTooMany) {
    const Assembly shared(SharedShape(1'111'111), {.table = false});
    EXPECT_EQ(CountOccurrences(*shared.Root(), 2'000'000), 1'111'110);
    EXPECT_EQ(CountOccurrences(*shared.Root(), 1'111'110), 1'111'110);
    EXPECT_EQ(CountOccurrences(*shared.Root(), 1000), 1001);
}

TEST(OccurrenceCount, GoesOverUsesNotOverOccurrences) {
    AssemblyShape shape;
    for (int level = 0; level < 200; ++level)
        shape.definitions.push_back({"level", {level + 1, level + 1}});
    shape.definitions.push_back({"part", {}});
    EXPECT_EQ(CountOccurrences(*Assembly(shape, {.table = false}).Root(), kPlenty), kPlenty + 1);
}

TEST(OccurrenceCount, CountsAUseWithoutADefinition) {
    const auto car = MakeReference();
    car->AddChild(MakeInstance().Get());
    EXPECT_EQ(CountOccurrences(*car, kPlenty), 1);
}

TEST(OccurrenceCount, ARingEnds) {
    const auto car = MakeReference();
    const auto use = MakeInstance(car.Get());
    car->AddChild(use.Get());
    EXPECT_EQ(CountOccurrences(*car, kPlenty), 1);
    use->SetReference(nullptr);
}

TEST(OccurrenceCount, ADeepChainIsCounted) {
    const Chain chain(kDeep);
    EXPECT_EQ(CountOccurrences(*chain.root, kPlenty), kDeep - 1);
}

}  // namespace
}  // namespace qn::test

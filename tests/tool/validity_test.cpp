#include "tool/validity.h"

#include "construction/hierarchy_generator.h"
#include "frame/host/api.h"
#include "frame/host/parameter_ids.h"
#include "frame/host/scene.h"
#include "product/effectivity.h"
#include "tests/tool/parts_support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace assembly::tests {
namespace {

using qn::k3::Effectivity;
using qn::test::AssemblyBuilder;
using testing::ElementsAre;
using tool::PartsStructure;
using tool::Structure;
using tool::Validity;

qn::Counted<Effectivity> Ranges() {
    return qn::CreateAs<Effectivity>(qn::k3::kEffectivityKey);
}

qn::Counted<Effectivity> Dates(std::int64_t first, std::int64_t last) {
    auto ranges = Ranges();
    ranges->AddDateRange(first, last);
    return ranges;
}

qn::Counted<Effectivity> Lines(std::int32_t first, std::int32_t last) {
    auto ranges = Ranges();
    ranges->AddLineRange(first, last);
    return ranges;
}

void Give(qn::Extension& holder, const qn::Counted<Effectivity>& ranges) {
    holder.SetParamVar(qn::Param::kEffectivity, qn::Var(ranges));
}

Validity AsOf(std::int64_t date) {
    return {date, {}};
}

/// A car with two axles of two wheels.
qn::test::AssemblyShape Car() {
    return AssemblyBuilder("car").Child("axle", 2).Under("axle", "wheel", 2).Shape();
}

std::vector<Part> Multi(const Structure& structure) {
    return PartsOf(structure, Laid(PartsStructure::kMulti));
}

TEST(Validity, HoldsBothEndsOfARange) {
    const auto holder = qn::Make<qn::k3::Scene>();
    Give(*holder, Dates(10, 20));
    for (const std::int64_t date : {10, 15, 20})
        EXPECT_TRUE(AsOf(date).Allows(*holder)) << date;
    for (const std::int64_t date : {9, 21})
        EXPECT_FALSE(AsOf(date).Allows(*holder)) << date;
}

TEST(Validity, NeedsOneRangeOfSeveral) {
    const auto holder = qn::Make<qn::k3::Scene>();
    const auto ranges = Dates(10, 20);
    ranges->AddDateRange(30, 40);
    Give(*holder, ranges);
    EXPECT_TRUE(AsOf(35).Allows(*holder));
    EXPECT_FALSE(AsOf(25).Allows(*holder));
}

TEST(Validity, OfAnInvertedRangeIsNever) {
    const auto holder = qn::Make<qn::k3::Scene>();
    Give(*holder, Dates(20, 10));
    EXPECT_FALSE(AsOf(15).Allows(*holder));
}

TEST(Validity, NeedsDateAndLineWhereBothAreAsked) {
    const auto holder = qn::Make<qn::k3::Scene>();
    const auto ranges = Dates(10, 20);
    ranges->AddLineRange(1, 5);
    Give(*holder, ranges);
    EXPECT_TRUE((Validity{15, 3}).Allows(*holder));
    EXPECT_FALSE((Validity{15, 6}).Allows(*holder));
    EXPECT_FALSE((Validity{25, 3}).Allows(*holder));
    EXPECT_TRUE((Validity{{}, 3}).Allows(*holder));
}

TEST(Validity, IsNotRestrictedByRangesOfTheOtherKind) {
    const auto holder = qn::Make<qn::k3::Scene>();
    Give(*holder, Lines(1, 5));
    EXPECT_TRUE(AsOf(15).Allows(*holder));
}

TEST(Validity, WithoutRangesIsAlways) {
    const auto holder = qn::Make<qn::k3::Scene>();
    EXPECT_TRUE(AsOf(0).Allows(*holder));
    Give(*holder, Ranges());
    EXPECT_TRUE(AsOf(0).Allows(*holder));
}

TEST(OnlyValid, TakesAUseWithEverythingBelowOutOfAllOccurrences) {
    const MadeStructure car(Car());
    Give(*car.assembly.At("wheel", 1), Dates(10, 20));
    EXPECT_THAT(Multi(OnlyValid(car.structure, *car.scene, AsOf(25))),
                ElementsAre(Part{0, "car", 1, 1}, Part{1, "axle", 2, 2}, Part{2, "wheel", 1, 2}));
    EXPECT_EQ(Multi(OnlyValid(car.structure, *car.scene, AsOf(15))), Multi(car.structure));

    Give(*car.assembly.At("axle", 0), Dates(10, 20));
    EXPECT_THAT(Multi(OnlyValid(car.structure, *car.scene, AsOf(25))),
                ElementsAre(Part{0, "car", 1, 1}, Part{1, "axle", 1, 1}, Part{2, "wheel", 1, 1}));
}

TEST(OnlyValid, OfAnInvalidRootIsNothing) {
    const MadeStructure car(Car());
    Give(*car.assembly.RootInstance(), Dates(10, 20));
    const Structure left = OnlyValid(car.structure, *car.scene, AsOf(25));
    EXPECT_TRUE(left.roots.empty());
    EXPECT_EQ(left.leafOccurrences, 0u);
    EXPECT_TRUE(Multi(left).empty());
}

TEST(OnlyValid, AnEmptiedAssemblyIsNoPart) {
    const MadeStructure car(Car());
    for (const int use : {0, 1})
        Give(*car.assembly.At("wheel", use), Dates(10, 20));
    const Structure left = OnlyValid(car.structure, *car.scene, AsOf(25));
    EXPECT_THAT(Multi(left), ElementsAre(Part{0, "car", 1, 1}, Part{1, "axle", 2, 2}));
    EXPECT_TRUE(PartsOf(left, Laid(PartsStructure::kFlat)).empty());
    EXPECT_EQ(left.leafOccurrences, 0u);
}

/// The car with its nodes.
struct CarWithNodes {
    CarWithNodes() : made(Car()) {
        qn::k3::Node* top = made.scene->GetFirstChild();
        qn::k3::Generator::Get(top)->Generate(top, qn::api->CreateContext(0, 0).Get());
    }
    qn::k3::Node& Axle(int index) { return *made.scene->GetFirstChild()->GetChildAt(index); }
    MadeStructure made;
};

TEST(OnlyValid, ANodeTakesItsOwnOccurrenceAlone) {
    CarWithNodes car;
    ASSERT_EQ(car.made.scene->GetFirstChild()->GetChildCount(), 2);
    Give(*car.Axle(1).GetChildAt(0), Dates(10, 20));
    const Structure left = OnlyValid(car.made.structure, *car.made.scene, AsOf(25));
    EXPECT_THAT(Multi(left), ElementsAre(Part{0, "car", 1, 1}, Part{1, "axle", 1, 1}, Part{2, "wheel", 2, 2},
                                         Part{1, "axle", 1, 1}, Part{2, "wheel", 1, 1}));
    EXPECT_THAT(PartsOf(left, Laid(PartsStructure::kFlat)), ElementsAre(Part{0, "wheel", 3, 3}));
    EXPECT_THAT(PartsOf(left, Laid(PartsStructure::kSingle)), ElementsAre(Part{1, "axle", 2, 2}));
    EXPECT_EQ(left.leafOccurrences, 3u);
}

TEST(OnlyValid, ANodeTakesEverythingBelowIt) {
    CarWithNodes car;
    Give(car.Axle(0), Lines(1, 5));
    Give(*car.Axle(0).GetChildAt(0), Lines(1, 5));
    EXPECT_THAT(Multi(OnlyValid(car.made.structure, *car.made.scene, Validity{{}, 6})),
                ElementsAre(Part{0, "car", 1, 1}, Part{1, "axle", 1, 1}, Part{2, "wheel", 2, 2}));
}

TEST(OnlyValid, AnInvalidTopNodeLeavesNothing) {
    CarWithNodes car;
    Give(*car.made.scene->GetFirstChild(), Dates(10, 20));
    EXPECT_TRUE(OnlyValid(car.made.structure, *car.made.scene, AsOf(25)).roots.empty());
}

TEST(OnlyValid, NodesWithoutGeneratorAreFilteredToo) {
    const auto scene = qn::Make<qn::k3::Scene>();
    qn::k3::Node* top = qn::test::BuildNodes(Car(), *scene);
    const Structure structure = tool::ReadStructure(*scene, *qn::api->CreateContext(0, 0));
    Give(*top->GetChildAt(1)->GetChildAt(0), Dates(10, 20));
    EXPECT_EQ(structure.leafOccurrences, 4u);
    EXPECT_EQ(OnlyValid(structure, *scene, AsOf(25)).leafOccurrences, 3u);
}

}  // namespace
}  // namespace assembly::tests

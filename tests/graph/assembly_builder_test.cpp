#include "tests/support/assembly.h"

#include "graph/lookup_table_impl.h"
#include "graph/reference_impl.h"
#include "tests/support/static_module.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

std::string NameOf(const graph::HierarchyElement* element) {
    return element->GetProperty(graph::Prop::kName, 0).ToText().ToUtf8();
}

class AssemblyBuilderTest : public testing::Test {
protected:
    const StaticModule module_{{{graph::ClassKey::kReference, &MakeOf<graph::ReferenceImpl>},
                                {graph::ClassKey::kLookupTable, &MakeOf<graph::LookupTableImpl>}}};
};

TEST_F(AssemblyBuilderTest, BuildsTheGraphThatItSays) {
    const auto car = AssemblyBuilder("car").Child("chassis").Child("wheel", 4).Under("wheel", "tyre").Build();
    EXPECT_EQ(NameOf(car.Root()), "car");
    EXPECT_EQ(car.Root()->GetChildCount(), 5);
    EXPECT_EQ(car.At("wheel")->GetReference(), car.Ref("wheel"));
    EXPECT_EQ(car.At("wheel", 3)->GetParentReference(), car.Root());
    EXPECT_EQ(car.At("wheel", 4), nullptr);
    EXPECT_EQ(car.Ref("wheel")->GetInstanceCount(), 4);
    EXPECT_EQ(car.At("tyre")->GetParentReference(), car.Ref("wheel"));
    EXPECT_EQ(car.Ref("engine"), nullptr);
}

TEST_F(AssemblyBuilderTest, GivesPathsByName) {
    const auto car = AssemblyBuilder("car").Child("wheel", 4).Under("wheel", "tyre").Build();
    const graph::Selector path = car.Path({"car", "wheel#2", "tyre"});
    ASSERT_EQ(path.GetPathElementCount(), 3);
    EXPECT_TRUE(path.IsValid());
    EXPECT_EQ(path.GetPathElement(0), car.RootInstance());
    EXPECT_EQ(path.GetPathElement(1), car.At("wheel", 2));
    EXPECT_EQ(path.GetInstance(), car.At("tyre"));
    EXPECT_FALSE(car.Path({"car", "tyre"}).IsValid());
}

TEST_F(AssemblyBuilderTest, EntersElementsInATable) {
    const auto car = AssemblyBuilder("car").Child("wheel").Build();
    const String id = car.At("wheel")->GetProperty(graph::Prop::kLocalId, 0).ToText();
    EXPECT_EQ(car.Table()->FindInstanceById(id), car.At("wheel"));
}

TEST_F(AssemblyBuilderTest, GivesServerIdsOnRequest) {
    const auto car = AssemblyBuilder("car").Child("wheel", 2).WithServerIds().Build();
    EXPECT_EQ(car.Table()->FindReferenceByBsId(L"s:wheel"), car.Ref("wheel"));
    EXPECT_EQ(car.Table()->FindInstanceByBsId(L"s:wheel.2"), car.At("wheel", 1));
}

TEST_F(AssemblyBuilderTest, BuildsWithoutTable) {
    const auto car = AssemblyBuilder("car").Child("wheel", 2).WithoutTable().Build();
    EXPECT_EQ(car.Table(), nullptr);
    EXPECT_EQ(car.Root()->GetLookupTable(), nullptr);
    EXPECT_EQ(car.Root()->GetChildCount(), 2);
}

TEST_F(AssemblyBuilderTest, GivesPartsContentOnRequest) {
    const auto car = AssemblyBuilder("car").Child("wheel").WithContent().Build();
    EXPECT_NE(Cast<k3::Object3D>(car.Ref("wheel")->GetTarget()), nullptr);
    EXPECT_TRUE(car.Root()->GetTarget().IsEmpty());
}

TEST_F(AssemblyBuilderTest, TakesRingsApartAtTheEnd) {
    Weak<graph::Reference> outlived;
    {
        const auto ring = AssemblyBuilder("a").Child("b").Under("b", "a").Build();
        EXPECT_EQ(ring.Path({"a", "b", "a", "b"}).GetPathElementCount(), 4);
        outlived = ring.Ref("b");
    }
    EXPECT_FALSE(outlived);
}

}  // namespace
}  // namespace qn::test

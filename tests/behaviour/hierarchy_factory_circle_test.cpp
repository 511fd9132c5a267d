#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"
#include "tests/support/assembly.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace qn::test {
namespace {

using namespace graph;

constexpr const char* kStart = "Invalid instance/reference hierarchy - found circular reference to entity ";

std::string ReportOf(Reference* reference) {
    const auto context = MakeContext();
    EXPECT_TRUE(NewFactory()->HasCircularReference(reference, context.Get()));
    EXPECT_EQ(context->Texts().size(), 1u);
    return context->Texts().empty() ? std::string() : context->Texts().front();
}

TEST(CircularReference, IsNoneInATreeNorWhereDefinitionsAreShared) {
    const Assembly car = AssemblyBuilder("car")
                             .Child("left")
                             .Child("right")
                             .Under("left", "wheel", 2)
                             .Under("right", "wheel")
                             .Build();
    const auto context = MakeContext();
    EXPECT_FALSE(NewFactory()->HasCircularReference(car.Root(), context.Get()));
    EXPECT_FALSE(NewFactory()->HasCircularReference(car.Root(), nullptr));
    EXPECT_TRUE(context->Texts().empty());
}

TEST(CircularReference, IsFoundWhereADefinitionHoldsItself) {
    const Assembly ring = AssemblyBuilder("box").Child("box").WithoutTable().Build();
    EXPECT_EQ(ReportOf(ring.Root()), std::string(kStart) + "box via name:box");
}

TEST(CircularReference, IsReportedAtLevelTwo) {
    const Assembly ring = AssemblyBuilder("box").Child("box").Build();
    const auto context = MakeContext();
    NewFactory()->HasCircularReference(ring.Root(), context.Get());
    EXPECT_EQ(context->Levels(), std::vector<int>{2});
}

TEST(CircularReference, IsReportedWithEveryId) {
    const Assembly ring = AssemblyBuilder("box").Child("box").WithServerIds().Build();
    const std::string id = ring.Root()->GetProperty(Prop::kLocalId, 0).ToText().ToUtf8();
    EXPECT_EQ(ReportOf(ring.Root()),
              kStart + ("box id: " + id + " bsid: s:box via name:box id:" + id + " bsid:s:box"));
}

TEST(CircularReference, IsReportedWithWhatIsSetAlone) {
    const auto use = NewReference()->CreateInstance();
    Reference& box = *use->GetReference();
    box.AddChild(use.Get());
    EXPECT_EQ(ReportOf(&box), std::string(kStart) + " via ");
    box.SetProperty(Prop::kBsId, Var(L"server"));
    EXPECT_EQ(ReportOf(&box), std::string(kStart) + " bsid: server via  bsid:server");
    box.RemoveChildAt(0);
}

TEST(CircularReference, IsReportedViaTheDescentInPointerOrder) {
    const Assembly ring =
        AssemblyBuilder("a").Child("b").Under("b", "c").Under("c", "b").WithoutTable().Build();
    std::vector<Reference*> descent{ring.Ref("a"), ring.Ref("b"), ring.Ref("c")};
    std::sort(descent.begin(), descent.end(), std::less<>());
    std::string via;
    for (const Reference* reference : descent)
        via += (via.empty() ? "name:" : "/name:") + NameOf(*reference).ToUtf8();
    EXPECT_EQ(ReportOf(ring.Root()), kStart + ("b via " + via));
}

TEST(CircularReference, IsReportedWithoutFinishedBranches) {
    const Assembly ring =
        AssemblyBuilder("a").Child("done").Child("b").Under("b", "b").WithoutTable().Build();
    EXPECT_EQ(ReportOf(ring.Root()).find("done"), std::string::npos);
}

TEST(CircularReference, IsReportedOnceForTheFirst) {
    const Assembly rings =
        AssemblyBuilder("a").Child("b").Child("c").Under("b", "b").Under("c", "c").WithoutTable().Build();
    EXPECT_EQ(ReportOf(rings.Root()).find(kStart + std::string("b via ")), 0u);
}

TEST(CircularReference, IsFoundWithoutLogToo) {
    const Assembly ring = AssemblyBuilder("a").Child("b").Under("b", "a").Build();
    EXPECT_TRUE(NewFactory()->HasCircularReference(ring.Root(), nullptr));
}

TEST(CircularReference, IsNotLookedForBelowUsesWithoutDefinition) {
    const auto reference = NewReference();
    reference->AddChild(NewInstance().Get());
    EXPECT_FALSE(NewFactory()->HasCircularReference(reference.Get(), MakeContext().Get()));
}

}  // namespace
}  // namespace qn::test

#include "construction/linked_reference.h"

#include "graph/limits.h"
#include "tests/construction/construction_support.h"
#include "tests/construction/forwarding_reference.h"

namespace qn::test {
namespace {

using namespace qn::graph;

/// A definition that stands for a file, with one use.
struct Link {
    explicit Link(const wchar_t* file) {
        reference->SetTarget(Var(file));
        instance = reference->CreateInstance();
    }
    Selector Path() const {
        Selector path;
        path.AppendPathElement(instance.Get());
        return path;
    }
    Counted<Instance> Adopt(Descent& descent, std::int64_t limit = kMaxOccurrences) const {
        OccurrenceBudget budget(limit);
        return AdoptLinkedReference(Path(), descent, budget);
    }
    Counted<Instance> Adopt() const {
        Descent descent;
        return Adopt(descent);
    }
    Counted<ForwardingReference> reference = Make<ForwardingReference>();
    Counted<Instance> instance;
};

TEST(AdoptLinkedReference, GivesTheInstance) {
    const Link link(L"wheel.stp");
    EXPECT_TRUE(link.Adopt() == link.instance);
}

TEST(AdoptLinkedReference, GivesNullWithoutAnInstance) {
    Descent descent;
    OccurrenceBudget budget(kMaxOccurrences);
    EXPECT_FALSE(AdoptLinkedReference(Selector(), descent, budget));
}

TEST(AdoptLinkedReference, ReloadsALinkOnce) {
    const Link link(L"wheel.stp");
    link.Adopt();
    EXPECT_EQ(link.reference->reloads, 1);
}

TEST(AdoptLinkedReference, DoesNotReloadWhatIsNoLink) {
    const Link link(L"wheel.stp");
    link.reference->SetTarget(Var());
    link.Adopt();
    EXPECT_EQ(link.reference->reloads, 0);
}

TEST(AdoptLinkedReference, GivesTheInstanceTheNameThatItsSelectorShows) {
    const Link link(L"wheel.stp");
    Selector path = link.Path();
    path.SetProperty(kName, Var(L"front left"));
    Descent descent;
    OccurrenceBudget budget(kMaxOccurrences);
    AdoptLinkedReference(path, descent, budget);
    EXPECT_EQ(NameOf(link.instance.Get()), "front left");
}

TEST(AdoptLinkedReference, KeepsTheInstancesNameWhereTheSelectorHasNone) {
    const Link link(L"wheel.stp");
    link.instance->SetProperty(kName, Var(L"wheel 1"));
    link.Adopt();
    EXPECT_EQ(NameOf(link.instance.Get()), "wheel 1");
}

TEST(AdoptLinkedReference, AddsASelectorEachTime) {
    const Link link(L"wheel.stp");
    link.Adopt();
    link.Adopt();
    EXPECT_EQ(link.instance->GetSelectorCount(), 2);
}

TEST(AdoptLinkedReference, GoesDownThroughWhatTheReloadBrought) {
    const Link link(L"wheel.stp");
    const auto wheel = AssemblyBuilder("wheel").Child("rim").Under("rim", "bolt").Build();
    link.reference->onReload = [&] { link.reference->AddChild(wheel.At("rim")); };
    link.Adopt();
    EXPECT_EQ(wheel.At("rim")->GetSelectorCount(), 1);
    EXPECT_EQ(wheel.At("bolt")->GetSelectorCount(), 1);
    EXPECT_EQ(wheel.At("bolt")->GetSelector(0).GetPathElementCount(), 3);
}

TEST(AdoptLinkedReference, ReloadsLinksFurtherDown) {
    const Link outer(L"car.stp"), inner(L"wheel.stp");
    outer.reference->AddChild(inner.instance.Get());
    outer.Adopt();
    EXPECT_EQ(inner.reference->reloads, 1);
}

TEST(AdoptLinkedReference, DoesNotLoadAFileWithinItself) {
    const Link outer(L"car.stp"), inner(L"car.stp");
    outer.reference->AddChild(inner.instance.Get());
    outer.Adopt();
    EXPECT_EQ(outer.reference->reloads, 1);
    EXPECT_EQ(inner.reference->reloads, 0);
}

TEST(AdoptLinkedReference, LoadsAFileAgainBesideItself) {
    const Link outer(L"car.stp"), left(L"wheel.stp"), right(L"wheel.stp");
    outer.reference->AddChild(left.instance.Get());
    outer.reference->AddChild(right.instance.Get());
    outer.Adopt();
    EXPECT_EQ(left.reference->reloads, 1);
    EXPECT_EQ(right.reference->reloads, 1);
}

TEST(AdoptLinkedReference, DoesNotEnterADefinitionWithinItself) {
    const Link link(L"box.stp");
    const auto within = link.reference->CreateInstance();
    link.reference->AddChild(within.Get());
    link.Adopt();
    EXPECT_EQ(link.reference->reloads, 1);
    EXPECT_EQ(within->GetSelectorCount(), 1);
    link.reference->RemoveChildAt(0);
}

TEST(AdoptLinkedReference, LeavesTheDescentAsItWas) {
    const Link link(L"box.stp");
    link.reference->AddChild(LooseInstance().Get());
    Descent descent;
    link.Adopt(descent);
    EXPECT_FALSE(descent.IsInside(link.reference.Get()));
    EXPECT_FALSE(descent.IsInsideFile(L"box.stp"));
}

TEST(AdoptLinkedReference, StopsAtTheLimit) {
    const Link link(L"box.stp");
    const auto part = AssemblyBuilder("part").Child("a").Child("b").Build();
    link.reference->AddChild(part.At("a"));
    link.reference->AddChild(part.At("b"));
    Descent descent;
    link.Adopt(descent, 2);
    EXPECT_EQ(part.At("a")->GetSelectorCount(), 1);
    EXPECT_EQ(part.At("b")->GetSelectorCount(), 0);
}

}  // namespace
}  // namespace qn::test

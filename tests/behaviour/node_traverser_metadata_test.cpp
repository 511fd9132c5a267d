#include "tests/behaviour/stored_selector.h"
#include "tests/behaviour/traverser_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

constexpr const wchar_t* kCad = L"$CADMetadata";
constexpr const wchar_t* kPmi = L"$QN.CAD.PMI";
constexpr const wchar_t* kInstanceName = L"InstanceName";

Var Group(std::initializer_list<std::pair<Var, Var>> rows) {
    return MapOf({{Var(L"group"), MapOf(rows)}});
}

const Var kA(L"a"), kB(L"b"), kC(L"c");

/// A node whose reference says a = 1 and b = 2.
struct Repeating : Stage {
    Counted<Instance> instance = EnterInstance(*table, L"at");
    k3::Node* node = NodeOf(instance.Get());

    Repeating() { instance->GetReference()->SetProperty(Prop::kMetadata, Said()); }
    static Var Said() { return Group({{kA, Var(1)}, {kB, Var(2)}}); }
    void Apply() const { table->ApplyElementChanges(node); }
    Var OfNode() const { return Var(node->GetMetadata(false)); }
};

TEST(NodeTraverserMetadata, OfAnInstanceLosesWhatTheReferenceSays) {
    const Repeating r;
    r.instance->SetProperty(Prop::kMetadata, Group({{kA, Var(1)}, {kB, Var(3)}, {kC, Var(1)}}));
    r.Apply();
    EXPECT_EQ(r.instance->GetProperty(Prop::kMetadata, 0), Group({{kB, Var(3)}, {kC, Var(1)}}));
    EXPECT_EQ(r.instance->GetReference()->GetProperty(Prop::kMetadata, 0), Repeating::Said());
}

TEST(NodeTraverserMetadata, OfANodeLosesWhatTheReferenceSays) {
    const Repeating r;
    r.node->SetMetadata(Group({{kA, Var(1)}, {kC, Var(1)}}).ToMap());
    r.Apply();
    EXPECT_EQ(r.OfNode(), Group({{kC, Var(1)}}));
}

TEST(NodeTraverserMetadata, OfASelectorLosesWhatTheReferenceSays) {
    const Repeating r;
    const auto selector = NewStoredSelector(), plain = NewStoredSelector();
    selector->SetProperty(Prop::kMetadata, Group({{kA, Var(1)}, {kC, Var(1)}}));
    SetSelectors(*r.instance, {selector.Get(), plain.Get()});
    r.Apply();
    EXPECT_EQ(selector->GetProperty(Prop::kMetadata, 0), Group({{kC, Var(1)}}));
    EXPECT_TRUE(plain->GetProperty(Prop::kMetadata, 0).IsEmpty());
}

TEST(NodeTraverserMetadata, KeepsGroupsThatLostEverything) {
    const Repeating r;
    r.instance->SetProperty(Prop::kMetadata, Group({{kA, Var(1)}}));
    r.Apply();
    EXPECT_EQ(r.instance->GetProperty(Prop::kMetadata, 0), Group({}));
}

TEST(NodeTraverserMetadata, KeepsGroupsThatTheReferenceHasNot) {
    const Repeating r;
    const Var other = MapOf({{Var(L"other"), MapOf({{kA, Var(1)}})}});
    r.instance->SetProperty(Prop::kMetadata, other);
    r.Apply();
    EXPECT_EQ(r.instance->GetProperty(Prop::kMetadata, 0), other);
}

TEST(NodeTraverserMetadata, KeepsValuesThatStandInNoGroup) {
    const Repeating r;
    r.instance->GetReference()->SetProperty(Prop::kMetadata, MapOf({{kA, Var(1)}}));
    r.instance->SetProperty(Prop::kMetadata, MapOf({{kA, Var(1)}}));
    r.Apply();
    EXPECT_EQ(r.instance->GetProperty(Prop::kMetadata, 0), MapOf({{kA, Var(1)}}));
}

TEST(NodeTraverserMetadata, KeepsAllWhereTheReferenceHasNone) {
    const Repeating r;
    r.instance->GetReference()->SetMetadata(nullptr);
    r.instance->SetProperty(Prop::kMetadata, Repeating::Said());
    r.node->SetMetadata(Repeating::Said().ToMap());
    r.Apply();
    EXPECT_EQ(r.instance->GetProperty(Prop::kMetadata, 0), Repeating::Said());
    EXPECT_EQ(r.OfNode(), Repeating::Said());
}

TEST(NodeTraverserMetadata, IsFilteredInACopy) {
    const Repeating r;
    const Var shared = Group({{kA, Var(1)}, {kC, Var(1)}});
    r.instance->SetProperty(Prop::kMetadata, shared);
    r.node->SetMetadata(shared.ToMap());
    r.Apply();
    EXPECT_EQ(shared, Group({{kA, Var(1)}, {kC, Var(1)}}));
}

TEST(NodeTraverserMetadata, IsNotMadeWhereThereWasNone) {
    const Repeating r;
    r.Apply();
    EXPECT_EQ(r.instance->GetMetadata(false), nullptr);
    EXPECT_EQ(r.node->GetMetadata(false), nullptr);
}

TEST(NodeTraverserMetadata, GoesWithTheTransformOfTheReferenceCleared) {
    const Repeating r;
    r.instance->GetReference()->SetProperty(Prop::kLocalMatrix, Var(Shift(1)));
    r.instance->GetReference()->SetProperty(Prop::kOwnMatrix, Var(Shift(2)));
    r.instance->SetProperty(Prop::kLocalMatrix, Var(Shift(3)));
    r.Apply();
    EXPECT_TRUE(r.instance->GetReference()->GetProperty(Prop::kLocalMatrix, 0).IsEmpty());
    EXPECT_EQ(r.instance->GetReference()->GetProperty(Prop::kOwnMatrix, 0), Var(Shift(2)));
    EXPECT_EQ(r.instance->GetProperty(Prop::kLocalMatrix, 0), Var(Shift(3)));
}

TEST(NodeTraverserMetadata, NeedsNoReference) {
    const Repeating r;
    const auto bare = NewInstance();
    bare->SetProperty(Prop::kMetadata, Repeating::Said());
    k3::Node* node = r.NodeOf(bare.Get());
    r.table->ApplyElementChanges(node);
    EXPECT_EQ(bare->GetProperty(Prop::kMetadata, 0), Repeating::Said());
}

// Names of PMI.

struct Named : Stage {
    Counted<Instance> topInstance = EnterInstance(*table, L"top");
    Counted<Instance> belowInstance = EnterInstance(*table, L"below");
    k3::Node* top = NodeOf(topInstance.Get());
    k3::Node* below = NodeOf(belowInstance.Get(), top);

    static void NameBy(k3::Node* node, const wchar_t* name) {
        node->SetMetaValue(Var(kCad), MapOf({{Var(kInstanceName), Var(name)}}));
    }
    static void MakePmi(k3::Node* node) { node->SetMetaValue(Var(kPmi), MapOf({{Var(L"PMIType"), Var(3)}})); }
    static Var PmiName(k3::Node* node) {
        const VarMap* metadata = node->GetMetadata(false);
        const Var* group = metadata ? metadata->Lookup(Var(kPmi)) : nullptr;
        const Var* name = group ? group->Lookup(kInstanceName) : nullptr;
        return name ? *name : Var();
    }
    void Apply() const { table->ApplyElementChanges(top); }
    /// With a path from the caller.
    void Apply(k3::Node* node, const wchar_t* path) const {
        std::map<PersistentSelector*, k3::Node*> answers, reserved;
        On(node)->ApplyElementChanges(node, path, answers, reserved);
    }
};

TEST(NodeTraverserMetadata, NamesThePmiOfANodeByItsCadName) {
    const Named n;
    Named::NameBy(n.top, L"Part");
    n.Apply();
    EXPECT_EQ(Named::PmiName(n.top), Var(L"Part"));
    EXPECT_EQ(*n.top->GetMetadata(false)->Lookup(Var(kCad)), MapOf({{Var(kInstanceName), Var(L"Part")}}));
}

TEST(NodeTraverserMetadata, KeepsWhatElseThePmiSays) {
    const Named n;
    Named::NameBy(n.top, L"Part");
    Named::MakePmi(n.top);
    n.Apply();
    EXPECT_EQ(*n.top->GetMetadata(false)->Lookup(Var(kPmi)),
              MapOf({{Var(L"PMIType"), Var(3)}, {Var(kInstanceName), Var(L"Part")}}));
}

TEST(NodeTraverserMetadata, NamesAPmiNodeByTheNameAboveIt) {
    const Named n;
    Named::NameBy(n.top, L"Part");
    Named::MakePmi(n.below);
    n.Apply();
    EXPECT_EQ(Named::PmiName(n.below), Var(L"Part"));
}

TEST(NodeTraverserMetadata, NamesAPmiNodeByItsOwnNameFirst) {
    const Named n;
    Named::NameBy(n.top, L"Part");
    Named::NameBy(n.below, L"Note");
    Named::MakePmi(n.below);
    n.Apply();
    EXPECT_EQ(Named::PmiName(n.below), Var(L"Note"));
}

TEST(NodeTraverserMetadata, NamesNoNodeByTheNameAboveUnlessItIsPmi) {
    const Named n;
    Named::NameBy(n.top, L"Part");
    n.below->SetMetaValue(Var(L"group"), MapOf({{kA, Var(1)}}));
    n.Apply();
    EXPECT_TRUE(Named::PmiName(n.below).IsEmpty());
}

TEST(NodeTraverserMetadata, NamesTheChildrenOnlyByTheNameAbove) {
    const Named n;
    const auto instance = EnterInstance(*n.table, L"sibling");
    k3::Node* sibling = n.NodeOf(instance.Get(), n.top);
    Named::NameBy(n.below, L"Part");
    Named::MakePmi(sibling);
    n.Apply(n.top, L"given");
    EXPECT_EQ(Named::PmiName(sibling), Var(L"given"));
}

TEST(NodeTraverserMetadata, NamesPmiNodesByTheGivenPath) {
    const Named n;
    Named::MakePmi(n.top);
    Named::MakePmi(n.below);
    n.Apply(n.top, L"given");
    EXPECT_EQ(Named::PmiName(n.top), Var(L"given"));
    EXPECT_EQ(Named::PmiName(n.below), Var(L"given"));
}

TEST(NodeTraverserMetadata, NamesNoPmiNodeWithoutInstance) {
    const Named n;
    k3::Node* plain = n.Node(L"plain", n.top);
    Named::MakePmi(plain);
    n.Apply(n.top, L"given");
    EXPECT_TRUE(Named::PmiName(plain).IsEmpty());
}

}  // namespace
}  // namespace qn::test

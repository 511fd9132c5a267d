// Paths to instances and nodes.

#include "graph/persistent_selector.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace qn::test {
namespace {

using namespace graph;

/// A stored selector of another module.
class ForeignSelector final : public PersistentSelector {
public:
    void SetProperty(PropEnum, const Var&) override {}
    Var GetProperty(PropEnum, int) const override { return Var(L"foreign"); }
    LookupTable* GetLookupTable() const override { return nullptr; }
    String ToDebugString() const override { return {}; }
};

TEST(SelectorFromPersistent, HasTheAttributesAndTheLivePath) {
    const auto a = NewUse(L"a"), b = NewUse(L"b");
    const auto stored = LiveSelector({a.Get(), b.Get()});
    stored->SetProperty(Prop::kName, Var(L"name"));
    stored->SetProperty(PropEnum(0x50), Var(L"odd"));
    const Selector selector = NewFactory()->SelectorFromPersistent(stored.Get());
    EXPECT_EQ(ElementsOf(selector), (std::vector<Instance*>{a.Get(), b.Get()}));
    EXPECT_EQ(selector.GetAttributes(), MapOf({{Var(1), Var(L"name")}, {Var(0x50), Var(L"odd")}}));
}

TEST(SelectorFromPersistent, HasNullForADeadElement) {
    const auto a = NewUse(L"a");
    auto b = NewUse(L"b");
    const auto stored = LiveSelector({b.Get(), a.Get()});
    b.Reset();
    const Selector selector = NewFactory()->SelectorFromPersistent(stored.Get());
    EXPECT_EQ(ElementsOf(selector), (std::vector<Instance*>{nullptr, a.Get()}));
    EXPECT_FALSE(selector.IsValid());
}

TEST(SelectorFromPersistent, NeverReadsIds) {
    const auto table = NewTable();
    EnterInstance(*table, L"a");
    const auto stored = IdSelector(*table, IdPath({L"a"}));
    stored->SetProperty(Prop::kName, Var(L"name"));
    const Selector selector = NewFactory()->SelectorFromPersistent(stored.Get());
    EXPECT_EQ(selector.GetPathElementCount(), 0);
    EXPECT_EQ(selector.GetAttributes(), MapOf({{Var(1), Var(L"name")}}));
}

TEST(SelectorFromPersistent, IsEmptyForNothingAndForAForeignOne) {
    const auto factory = NewFactory();
    const auto foreign = Make<ForeignSelector>();
    for (PersistentSelector* source :
         {static_cast<PersistentSelector*>(nullptr), static_cast<PersistentSelector*>(foreign.Get())}) {
        const Selector selector = factory->SelectorFromPersistent(source);
        EXPECT_EQ(selector.GetPathElementCount(), 0);
        EXPECT_TRUE(selector.GetAttributes().IsEmpty());
    }
}

TEST(PersistentFromSelector, KeepsThePathWithoutCountingIt) {
    auto a = NewUse(L"a"), b = NewUse(L"b");
    const auto stored = NewFactory()->PersistentFromSelector(PathOf({a.Get(), b.Get()}));
    ASSERT_TRUE(stored);
    EXPECT_EQ(LivePath(*stored), (std::vector<Instance*>{a.Get(), b.Get()}));
    EXPECT_EQ(a->GetRefCount(), 1);
    EXPECT_EQ(stored->GetRefCount(), 1);
}

TEST(PersistentFromSelector, IsNullForAnEmptyPath) {
    Selector selector;
    selector.SetProperty(Prop::kName, Var(L"name"));
    EXPECT_FALSE(NewFactory()->PersistentFromSelector(selector));
}

TEST(PersistentFromSelector, StoresKnownOwnSetValuesAlone) {
    const auto a = NewUse(L"inherited");
    a->SetProperty(Prop::kText, Var(L"inherited"));
    Selector selector = PathOf({a.Get()});
    selector.SetAttributes(MapOf({{Var(0), Var(L"lowest")},
                                  {Var(2), Var()},
                                  {Var(0x23), Var(L"highest")},
                                  {Var(0x24), Var(L"beyond")}}));
    const auto stored = NewFactory()->PersistentFromSelector(selector);
    EXPECT_EQ(SavedMap(*stored, 0x1000), MapOf({{Var(0), Var(L"lowest")}, {Var(0x23), Var(L"highest")}}));
}

TEST(PersistentFromSelector, StoresCopies) {
    const auto a = NewUse(L"a");
    Var shared = MapOf({{Var(L"nested"), MapOf({{Var(L"x"), Var(1)}})}});
    Selector selector = PathOf({a.Get()});
    selector.SetProperty(Prop::kMetadata, shared);
    const auto stored = NewFactory()->PersistentFromSelector(selector);
    shared.At(L"nested").At(L"x") = Var(2);
    EXPECT_EQ(stored->GetProperty(Prop::kMetadata, 0),
              MapOf({{Var(L"nested"), MapOf({{Var(L"x"), Var(1)}})}}));
}

TEST(PersistentFromSelector, ComesBackAsTheSameSelector) {
    const auto factory = NewFactory();
    const auto a = NewUse(L"a"), b = NewUse(L"b");
    Selector selector = PathOf({a.Get(), b.Get()});
    selector.SetProperty(Prop::kName, Var(L"name"));
    const Selector back = factory->SelectorFromPersistent(factory->PersistentFromSelector(selector).Get());
    EXPECT_EQ(ElementsOf(back), ElementsOf(selector));
    EXPECT_EQ(back.GetAttributes(), selector.GetAttributes());
}

/// root(first(leaf) second(leaf other)), where `first` and `second` show one instance.
struct Twins {
    k3::Node* Find(std::initializer_list<Instance*> path) const {
        return factory->FindNodeForSelector(root, PathOf(path)).Get();
    }

    Counted<HierarchyFactory> factory = NewFactory();
    Counted<Instance> a = NewUse(L"a"), twin = NewUse(L"twin"), leaf = NewUse(L"leaf"),
                      other = NewUse(L"other");
    Counted<k3::Scene> scene = Make<k3::Scene>();
    k3::Node* root = AddNode(*scene, L"root", a.Get());
    k3::Node* plain = AddNode(*root, L"plain");
    k3::Node* first = AddNode(*root, L"first", twin.Get());
    k3::Node* second = AddNode(*root, L"second", twin.Get());
    k3::Node* leafOfFirst = AddNode(*first, L"leaf", leaf.Get());
    k3::Node* leafOfSecond = AddNode(*second, L"leaf", leaf.Get());
    k3::Node* otherOfSecond = AddNode(*second, L"other", other.Get());
};

TEST(FindNodeForSelector, IsTheRootForItsInstanceAlone) {
    const Twins t;
    EXPECT_EQ(t.Find({t.a.Get()}), t.root);
}

TEST(FindNodeForSelector, StartsAtTheRoot) {
    const Twins t;
    EXPECT_FALSE(t.Find({t.twin.Get()}));
    EXPECT_FALSE(t.Find({t.twin.Get(), t.leaf.Get()}));
    EXPECT_FALSE(t.Find({}));
    EXPECT_FALSE(t.Find({nullptr}));
    EXPECT_FALSE(t.factory->FindNodeForSelector(nullptr, PathOf({t.a.Get()})));
    EXPECT_FALSE(t.factory->FindNodeForSelector(t.plain, Selector()));
}

TEST(FindNodeForSelector, TakesTheFirstSibling) {
    const Twins t;
    EXPECT_EQ(t.Find({t.a.Get(), t.twin.Get()}), t.first);
    EXPECT_EQ(t.Find({t.a.Get(), t.twin.Get(), t.leaf.Get()}), t.leafOfFirst);
}

TEST(FindNodeForSelector, NeverTriesALaterSibling) {
    const Twins t;
    EXPECT_FALSE(t.Find({t.a.Get(), t.twin.Get(), t.other.Get()}));
    t.first->Remove(0);
    EXPECT_EQ(t.Find({t.a.Get(), t.twin.Get(), t.other.Get()}), t.otherOfSecond);
}

TEST(FindNodeForSelector, FindsNoUnknownChild) {
    const Twins t;
    EXPECT_FALSE(t.Find({t.a.Get(), t.other.Get()}));
    EXPECT_FALSE(t.Find({t.a.Get(), t.twin.Get(), t.leaf.Get(), t.leaf.Get()}));
}

TEST(SelectorFromInstance, HasThePathFromTheTop) {
    const auto top = NewUse(L"top"), middle = NewUse(L"middle"), bottom = NewUse(L"bottom");
    top->GetReference()->AddChild(middle.Get());
    middle->GetReference()->AddChild(bottom.Get());
    const Selector selector = NewFactory()->SelectorFromInstance(bottom.Get());
    EXPECT_EQ(ElementsOf(selector), (std::vector<Instance*>{top.Get(), middle.Get(), bottom.Get()}));
    EXPECT_TRUE(selector.GetAttributes().IsEmpty());
}

TEST(SelectorFromInstance, IsTheInstanceAloneWithoutParent) {
    const auto use = NewUse(L"use");
    EXPECT_EQ(ElementsOf(NewFactory()->SelectorFromInstance(use.Get())), std::vector<Instance*>{use.Get()});
    EXPECT_EQ(NewFactory()->SelectorFromInstance(nullptr).GetPathElementCount(), 0);
}

TEST(SelectorFromInstance, FollowsTheFirstUseOfEachDefinition) {
    const auto first = NewUse(L"box"), part = NewUse(L"part"), top = NewUse(L"top");
    const auto second = first->GetReference()->CreateInstance();
    first->GetReference()->AddChild(part.Get());
    top->GetReference()->AddChild(second.Get());
    EXPECT_EQ(ElementsOf(NewFactory()->SelectorFromInstance(part.Get())),
              (std::vector<Instance*>{first.Get(), part.Get()}));
}

TEST(SelectorFromInstance, EndsBelowADeadFirstUse) {
    auto first = NewUse(L"box");
    const auto part = NewUse(L"part");
    const Counted<Reference> box(first->GetReference());
    const auto second = box->CreateInstance();
    box->AddChild(part.Get());
    first.Reset();
    EXPECT_EQ(ElementsOf(NewFactory()->SelectorFromInstance(part.Get())), std::vector<Instance*>{part.Get()});
}

TEST(SelectorFromInstance, EndsInARing) {
    const auto a = NewUse(L"a"), b = NewUse(L"b");
    a->GetReference()->AddChild(b.Get());
    b->GetReference()->AddChild(a.Get());
    const auto path = ElementsOf(NewFactory()->SelectorFromInstance(b.Get()));
    ASSERT_FALSE(path.empty());
    EXPECT_EQ(path.back(), b.Get());
    EXPECT_LE(path.size(), 2u);
    a->GetReference()->RemoveChildAt(0);
}

/// top(left(leaf) right)
struct Family {
    k3::Node* Related(std::initializer_list<Interface*> members, k3::Node* node) const {
        const auto array = InterfaceArray::CreateStrong();
        for (Interface* member : members)
            array->Add(member);
        return factory->FindRelatedNode(array.Get(), node).Get();
    }

    Counted<HierarchyFactory> factory = NewFactory();
    Counted<k3::Scene> scene = Make<k3::Scene>();
    k3::Node* top = AddNode(*scene, L"top");
    k3::Node* left = AddNode(*top, L"left");
    k3::Node* right = AddNode(*top, L"right");
    k3::Node* leaf = AddNode(*left, L"leaf");
};

TEST(FindRelatedNode, IsTheNodeItselfAnAncestorOrADescendant) {
    const Family f;
    EXPECT_EQ(f.Related({f.left}, f.left), f.left);
    EXPECT_EQ(f.Related({f.top}, f.leaf), f.top);
    EXPECT_EQ(f.Related({f.leaf}, f.top), f.leaf);
    EXPECT_EQ(f.Related({f.right, f.leaf}, f.left), f.leaf);
}

TEST(FindRelatedNode, IsNoneForSiblings) {
    const Family f;
    EXPECT_FALSE(f.Related({f.right}, f.left));
    EXPECT_FALSE(f.Related({f.right}, f.leaf));
    EXPECT_FALSE(f.Related({AddNode(*f.scene, L"elsewhere")}, f.leaf));
}

TEST(FindRelatedNode, IsTheLowestPointerAmongSeveral) {
    const Family f;
    k3::Node* lowest = std::min({f.top, f.left, f.leaf}, std::less<>());
    EXPECT_EQ(f.Related({f.top, f.left, f.leaf}, f.left), lowest);
    EXPECT_EQ(f.Related({f.leaf, f.left, f.top}, f.left), lowest);
}

TEST(FindRelatedNode, IsNoneWithoutNodes) {
    const Family f;
    EXPECT_FALSE(f.Related({}, f.left));
    EXPECT_FALSE(f.Related({f.left}, nullptr));
    EXPECT_FALSE(f.factory->FindRelatedNode(nullptr, f.left));
    EXPECT_FALSE(f.Related({NewReference().Get()}, f.left));
}

TEST(FindRelatedNode, WorksOutsideOfAScene) {
    const auto root = Make<k3::Node>();
    k3::Node* child = AddNode(*root, L"child");
    const Family f;
    EXPECT_EQ(f.Related({child}, root.Get()), child);
    EXPECT_EQ(f.Related({root.Get()}, child), root.Get());
}

}  // namespace
}  // namespace qn::test

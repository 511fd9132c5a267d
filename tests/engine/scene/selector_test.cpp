#include "frame/host/selector.h"

#include "frame/host/collections.h"
#include "tests/engine/scene/fake_graph.h"

#include <gtest/gtest.h>

namespace qn::graph {
namespace {

using test::FakeInstance;
using test::FakeReference;
using test::FakeTraverser;

Selector PathOf(std::initializer_list<Instance*> path) {
    Selector selector;
    for (Instance* instance : path)
        selector.AppendPathElement(instance);
    return selector;
}

TEST(Selector, IsInvalidWithoutPath) {
    const Selector selector;
    EXPECT_FALSE(selector.IsValid());
    EXPECT_EQ(selector.GetInstance(), nullptr);
    EXPECT_EQ(selector.GetReference(), nullptr);
    EXPECT_EQ(selector.GetChildCount(), 0);
    EXPECT_EQ(selector.GetPathElementCount(), 0);
    EXPECT_EQ(selector.GetLookupTable(), nullptr);
    EXPECT_FALSE(selector.GetChild(0).IsValid());
}

TEST(Selector, LendsItsPathAndCountsIt) {
    const auto a = Make<FakeInstance>(), b = Make<FakeInstance>();
    const Selector selector = PathOf({a.Get(), b.Get()});
    EXPECT_TRUE(selector.IsValid());
    EXPECT_EQ(selector.GetPathElementCount(), 2);
    EXPECT_EQ(selector.GetPathElement(0), a.Get());
    EXPECT_EQ(selector.GetPathElement(1), b.Get());
    EXPECT_EQ(selector.GetPathElement(2), nullptr);
    EXPECT_EQ(selector.GetInstance(), b.Get());
    EXPECT_EQ(a->GetRefCount(), 2);
}

TEST(Selector, ANullOnThePathMakesItInvalid) {
    const auto a = Make<FakeInstance>();
    EXPECT_FALSE(PathOf({a.Get(), nullptr}).IsValid());
    Selector selector = PathOf({nullptr});
    EXPECT_FALSE(selector.IsValid());
    selector.AppendPathElement(a.Get());
    EXPECT_FALSE(selector.IsValid());
    EXPECT_EQ(selector.GetPathElementCount(), 2);
    EXPECT_EQ(selector.GetInstance(), a.Get());
}

TEST(Selector, CopiesGrowApart) {
    const auto a = Make<FakeInstance>(), b = Make<FakeInstance>();
    Selector first = PathOf({a.Get()});
    Selector second = first;
    second.AppendPathElement(b.Get());
    EXPECT_EQ(first.GetPathElementCount(), 1);
    EXPECT_EQ(second.GetPathElementCount(), 2);
}

TEST(Selector, WithoutTraverserChildrenAreThoseOfTheDefinition) {
    const auto reference = Make<FakeReference>();
    const auto leaf = Make<FakeInstance>();
    reference->AddChild(leaf.Get());
    const auto root = Make<FakeInstance>(reference.Get());
    Selector selector = PathOf({root.Get()});
    selector.SetProperty(Prop::kName, Var(L"own"));
    EXPECT_EQ(selector.GetReference(), reference.Get());
    EXPECT_EQ(selector.GetChildCount(), 1);
    const Selector child = selector.GetChild(0);
    EXPECT_TRUE(child.IsValid());
    EXPECT_TRUE(child.GetAttributes().IsEmpty());
    EXPECT_EQ(child.GetPathElement(0), root.Get());
    EXPECT_EQ(child.GetInstance(), leaf.Get());
    EXPECT_FALSE(selector.GetChild(1).IsValid());
}

TEST(Selector, ReadsOwnAttributesThenTheInstance) {
    const auto reference = Make<FakeReference>();
    reference->SetProperty(Prop::kName, Var(L"definition"));
    const auto instance = Make<FakeInstance>(reference.Get());
    Selector selector = PathOf({instance.Get()});
    EXPECT_TRUE(selector.GetProperty(Prop::kName, 0).IsEmpty());
    EXPECT_EQ(selector.GetProperty(Prop::kName, 1), Var(L"definition"));
    selector.SetProperty(Prop::kName, Var(L"own"));
    EXPECT_EQ(selector.GetProperty(Prop::kName, 0), Var(L"own"));
    EXPECT_EQ(selector.GetProperty(Prop::kName, 1), Var(L"own"));
    EXPECT_TRUE(instance->GetProperty(Prop::kName, 0).IsEmpty());
}

TEST(Selector, AnEmptyOwnAttributeIsNotInherited) {
    const auto instance = Make<FakeInstance>();
    instance->SetProperty(Prop::kName, Var(L"use"));
    Selector selector = PathOf({instance.Get()});
    selector.SetProperty(Prop::kName, Var());
    EXPECT_TRUE(selector.GetProperty(Prop::kName, 1).IsEmpty());
}

TEST(Selector, WithoutPathEverythingElseIsEmpty) {
    const Selector selector;
    EXPECT_TRUE(selector.GetProperty(Prop::kName, 1).IsEmpty());
}

TEST(Selector, HasPersistentDataWithOwnAttributes) {
    Selector selector;
    EXPECT_FALSE(selector.HasSelectorPersistentData());
    Var empty;
    empty.InitMap();
    selector.SetAttributes(empty);
    EXPECT_FALSE(selector.HasSelectorPersistentData());
    selector.SetProperty(Prop::kName, Var());
    EXPECT_TRUE(selector.HasSelectorPersistentData());
}

TEST(Selector, HasPersistentDataWhenTheTraverserKnowsAnId) {
    for (const PropEnum id : {Prop::kBsId, Prop::kAttachedIdentifier, Prop::kPrimaryIdentifier}) {
        const auto traverser = Make<FakeTraverser>(1);
        Selector selector;
        selector.AssignTraverser(traverser.Get());
        EXPECT_FALSE(selector.HasSelectorPersistentData());
        traverser->properties[Key(id)] = Var(L"");
        EXPECT_TRUE(selector.HasSelectorPersistentData());
    }
}

TEST(Selector, OnATraverserThePathStartsThere) {
    const auto traverser = Make<FakeTraverser>(2);
    const auto other = Make<FakeInstance>();
    Selector selector = PathOf({other.Get(), other.Get()});
    selector.AssignTraverser(traverser.Get());
    EXPECT_EQ(selector.GetPathElementCount(), 1);
    EXPECT_EQ(selector.GetInstance(), traverser->GetInstance().Get());
    EXPECT_EQ(selector.GetTraverser(), traverser.Get());
    EXPECT_EQ(selector.GetChildCount(), 2);
}

TEST(Selector, OnATraverserEachStepAddsOneInstance) {
    const auto traverser = Make<FakeTraverser>(2);
    Selector selector;
    selector.AssignTraverser(traverser.Get());
    const Selector child = selector.GetChild(1);
    const Selector below = child.GetChild(0);
    EXPECT_EQ(below.GetPathElementCount(), 3);
    EXPECT_EQ(below.GetPathElement(0), selector.GetInstance());
    EXPECT_EQ(below.GetPathElement(1), child.GetInstance());
    EXPECT_EQ(below.GetPathElement(2), below.GetInstance());
    EXPECT_NE(below.GetInstance(), child.GetInstance());
    EXPECT_FALSE(selector.GetChild(2).IsValid());
}

TEST(Selector, InstancesAreAskedForWhenNeededAndOnce) {
    int asked = 0;
    const auto traverser = Make<FakeTraverser>(1, &asked);
    Selector selector;
    selector.AssignTraverser(traverser.Get());
    const Selector child = selector.GetChild(0);
    EXPECT_EQ(child.GetPathElementCount(), 2);
    EXPECT_TRUE(child.IsValid());
    EXPECT_EQ(asked, 0);
    child.GetPathElement(0);
    EXPECT_EQ(asked, 1);
    selector.GetInstance();
    child.GetPathElement(0);
    EXPECT_EQ(asked, 1);
}

TEST(Selector, ValidityAndPropertiesAreTheTraversers) {
    const auto traverser = Make<FakeTraverser>(1);
    Selector selector;
    selector.AssignTraverser(traverser.Get());
    selector.SetProperty(Prop::kName, Var(L"n"));
    EXPECT_EQ(traverser->properties[Key(Prop::kName)], Var(L"n"));
    EXPECT_TRUE(selector.GetAttributes().IsEmpty());
    EXPECT_EQ(selector.GetProperty(Prop::kName, 0), Var(L"n"));
    traverser->valid = false;
    EXPECT_FALSE(selector.IsValid());
}

TEST(Selector, WithoutItsTraverserThePathStays) {
    const auto traverser = Make<FakeTraverser>(1);
    Selector selector;
    selector.AssignTraverser(traverser.Get());
    selector = selector.GetChild(0);
    selector.AssignTraverser(nullptr);
    EXPECT_EQ(selector.GetPathElementCount(), 2);
    EXPECT_TRUE(selector.IsValid());
}

TEST(Selector, AnElementAppendedOnATraverserIsNotItsInstance) {
    const auto traverser = Make<FakeTraverser>(1);
    const auto other = Make<FakeInstance>();
    Selector selector;
    selector.AssignTraverser(traverser.Get());
    selector.AppendPathElement(other.Get());
    EXPECT_EQ(selector.GetPathElement(1), other.Get());
    EXPECT_EQ(selector.GetInstance(), traverser->GetInstance().Get());
}

TEST(Selector, GoingDownCostsOneStepHoweverDeepItIs) {
    constexpr int kDepth = 100'000;
    const auto reference = Make<FakeReference>();
    const auto instance = Make<FakeInstance>();
    reference->AddChild(instance.Get());
    Selector selector;
    std::vector<Selector> all;
    for (int i = 0; i < kDepth; ++i) {
        selector.AppendPathElement(Make<FakeInstance>(reference.Get()).Get());
        all.push_back(selector);
        ASSERT_TRUE(selector.GetChild(0).IsValid());
    }
    const Selector deepest = all.back();
    all.clear();
    for (unsigned i = 0; i < kDepth; ++i)
        ASSERT_NE(deepest.GetPathElement(i), nullptr);
    EXPECT_EQ(deepest.GetPathElementCount(), kDepth);
}

TEST(Selector, ADeepWalkOnATraverserIsValidWithoutAskingTheWholePath) {
    constexpr int kDepth = 100'000;
    int asked = 0;
    const auto traverser = Make<FakeTraverser>(1, &asked);
    Selector selector;
    selector.AssignTraverser(traverser.Get());
    for (int i = 0; i < kDepth; ++i)
        selector = selector.GetChild(0);
    EXPECT_TRUE(selector.IsValid());
    EXPECT_EQ(asked, 0);
    EXPECT_NE(selector.GetPathElement(kDepth / 2), nullptr);
    EXPECT_EQ(asked, 1);
}

}  // namespace
}  // namespace qn::graph

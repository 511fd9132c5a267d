#include "tests/behaviour/element_support.h"
#include "tests/behaviour/foreign_instance.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

constexpr int kChildrenChunk = 0x1002;

Counted<Instance> NewUse() {
    return NewReference()->CreateInstance();
}

std::vector<Instance*> ChildrenOf(const Reference& reference) {
    std::vector<Instance*> children;
    for (int i = 0; i < reference.GetChildCount(); ++i)
        children.push_back(reference.GetChild(i).Get());
    return children;
}

using Children = std::vector<Instance*>;

TEST(ReferenceChildren, StandInTheOrderInWhichTheyWereAdded) {
    const auto parent = NewReference();
    const auto a = NewUse(), b = NewUse(), c = NewUse();
    for (const auto& child : {b, a, c})
        parent->AddChild(child.Get());
    EXPECT_EQ(ChildrenOf(*parent), (Children{b.Get(), a.Get(), c.Get()}));
    for (const auto& child : {a, b, c}) {
        EXPECT_EQ(child->GetParentReference(), parent);
        EXPECT_TRUE(parent->HasChild(child.Get()));
    }
}

TEST(ReferenceChildren, AreNotThoseOfOthersNorItsOwnUses) {
    const auto parent = NewReference(), other = NewReference();
    const auto child = NewUse(), use = parent->CreateInstance();
    other->AddChild(child.Get());
    parent->AddChild(NewUse().Get());
    EXPECT_FALSE(parent->HasChild(child.Get()));
    EXPECT_FALSE(parent->HasChild(use.Get()));
}

TEST(ReferenceChildren, AreHeldAndHandedOutCounted) {
    const auto parent = NewReference();
    const auto child = NewUse();
    parent->AddChild(child.Get());
    EXPECT_EQ(child->GetRefCount(), 2);
    const auto found = parent->GetChild(0);
    EXPECT_EQ(child->GetRefCount(), 3);
    EXPECT_FALSE(parent->GetChild(1));
    EXPECT_FALSE(parent->GetChild(100));
}

TEST(ReferenceChildren, AreNotNull) {
    const auto parent = NewReference();
    parent->AddChild(nullptr);
    EXPECT_EQ(parent->GetChildCount(), 0);
    EXPECT_FALSE(parent->HasChild(nullptr));
}

TEST(ReferenceChildren, AreOfThisModule) {
    const auto parent = NewReference();
    const auto foreign = Make<ForeignInstance>();
    parent->AddChild(foreign.Get());
    EXPECT_EQ(parent->GetChildCount(), 0);
    EXPECT_EQ(foreign->GetRefCount(), 1);
}

TEST(ReferenceChildren, AreEachThereOnce) {
    const auto parent = NewReference();
    const auto child = NewUse();
    parent->AddChild(child.Get());
    parent->AddChild(child.Get());
    EXPECT_EQ(parent->GetChildCount(), 1);
    EXPECT_EQ(child->GetRefCount(), 2);
}

TEST(ReferenceChildren, StayInTheFirstListWhenAddedToASecond) {
    const auto first = NewReference(), second = NewReference();
    const auto child = NewUse();
    first->AddChild(child.Get());
    second->AddChild(child.Get());
    EXPECT_TRUE(first->HasChild(child.Get()));
    EXPECT_TRUE(second->HasChild(child.Get()));
    EXPECT_EQ(child->GetParentReference(), second);
    first->AddChild(child.Get());
    EXPECT_EQ(child->GetParentReference(), second) << "adding again changes nothing";
}

TEST(ReferenceChildren, KeepTheirOrderWhenOneGoes) {
    const auto parent = NewReference();
    const auto a = NewUse(), b = NewUse(), c = NewUse();
    for (const auto& child : {a, b, c})
        parent->AddChild(child.Get());
    parent->RemoveChild(b.Get());
    EXPECT_EQ(ChildrenOf(*parent), (Children{a.Get(), c.Get()}));
    EXPECT_EQ(b->GetParentReference(), nullptr);
    EXPECT_EQ(b->GetRefCount(), 1);
    parent->RemoveChildAt(0);
    EXPECT_EQ(ChildrenOf(*parent), Children{c.Get()});
    EXPECT_EQ(a->GetParentReference(), nullptr);
    EXPECT_EQ(c->GetParentReference(), parent);
}

TEST(ReferenceChildren, LoseTheirParentToARemovalFromAnyList) {
    const auto first = NewReference(), second = NewReference();
    const auto child = NewUse();
    first->AddChild(child.Get());
    second->AddChild(child.Get());
    first->RemoveChild(child.Get());
    EXPECT_EQ(child->GetParentReference(), nullptr);
    EXPECT_TRUE(second->HasChild(child.Get()));
}

TEST(ReferenceChildren, AreUntouchedByARemovalThatFindsNothing) {
    const auto parent = NewReference(), other = NewReference();
    const auto child = NewUse();
    parent->AddChild(child.Get());
    other->RemoveChild(child.Get());
    other->RemoveChild(nullptr);
    other->RemoveChildAt(0);
    parent->RemoveChild(nullptr);
    parent->RemoveChildAt(1);
    EXPECT_EQ(ChildrenOf(*parent), Children{child.Get()});
    EXPECT_EQ(child->GetParentReference(), parent);
}

TEST(ReferenceChildren, FromAFileAreNotTestedForDoublesAndKeepTheirParent) {
    const auto parent = NewReference(), elsewhere = NewReference();
    const auto child = NewUse(), orphan = NewUse();
    elsewhere->AddChild(child.Get());
    Feed(*parent, kChildrenChunk, ArrayOf({Var(child), Var(orphan), Var(child)}).ToArray());
    EXPECT_EQ(ChildrenOf(*parent), (Children{child.Get(), orphan.Get(), child.Get()}));
    EXPECT_EQ(child->GetParentReference(), elsewhere);
    EXPECT_EQ(orphan->GetParentReference(), nullptr);
    Feed(*parent, kChildrenChunk, ArrayOf({Var(orphan)}).ToArray());
    EXPECT_EQ(parent->GetChildCount(), 4) << "appended to what is there";
}

TEST(ReferenceChildren, FromAFileMayBeForeign) {
    const auto parent = NewReference();
    const auto foreign = Make<ForeignInstance>();
    Feed(*parent, kChildrenChunk, ArrayOf({Var(), Var(5), Var(NewReference()), Var(foreign)}).ToArray());
    EXPECT_EQ(ChildrenOf(*parent), Children{foreign.Get()});
    EXPECT_TRUE(parent->HasChild(foreign.Get()));
}

}  // namespace
}  // namespace qn::test

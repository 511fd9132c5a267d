// Properties of nodes that go back to the elements they came from.

#include "frame/host/object3d.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

struct Shown {
    void ToInstance() const { NewFactory()->ApplyNodeToInstance(node); }
    void ToReference() const { NewFactory()->ApplyNodeToReference(node, definition.Get()); }

    Counted<Instance> use = NewUse(L"former");
    Counted<Reference> definition{use->GetReference()};
    Counted<k3::Scene> scene = Make<k3::Scene>();
    k3::Node* node = AddNode(*scene, L"node", use.Get());
};

Var SomeMetadata() {
    return MapOf({{Var(L"a"), Var(1)}});
}

TEST(ApplyNodeToInstance, WritesWhatTheNodeSays) {
    const Shown s;
    const Matrix4<double> place = Shift(1, 2, 3);
    s.node->SetMatrix(&place, 0);
    s.node->SetText(L"text");
    s.node->SetMetadata(Cast<VarMap>(SomeMetadata()));
    s.node->SetParamVar(Param::kExternalIds, Var(L"external"));
    s.node->SetParamVar(Param::kAttachedIdentifier, Var(L"attached"));
    s.ToInstance();
    EXPECT_EQ(s.use->GetProperty(Prop::kName, 0), Var(L"node"));
    EXPECT_EQ(s.use->GetProperty(Prop::kLocalMatrix, 0), Var(place));
    EXPECT_EQ(s.use->GetProperty(Prop::kText, 0), Var(L"text"));
    EXPECT_EQ(s.use->GetProperty(Prop::kMetadata, 0), SomeMetadata());
    EXPECT_EQ(s.use->GetProperty(Prop::kExternalIds, 0), Var(L"external"));
    EXPECT_EQ(s.use->GetProperty(Prop::kAttachedIdentifier, 0), Var(L"attached"));
}

TEST(ApplyNodeToInstance, WritesEmptyValuesToo) {
    const Shown s;
    for (const PropEnum id :
         {Prop::kLocalMatrix, Prop::kHidden, Prop::kLocalId, Prop::kExternalIds, Prop::kText,
          Prop::kAttachedIdentifier, Prop::kPrimaryIdentifier, Prop::kOrigin}) {
        s.use->SetProperty(id, Var(L"former"));
    }
    s.use->SetProperty(Prop::kMetadata, SomeMetadata());
    s.ToInstance();
    for (int id = kFirstProp; id <= kLastProp; ++id) {
        const bool name = PropEnum(id) == Prop::kName;
        EXPECT_EQ(s.use->GetProperty(PropEnum(id), 0).IsSet(), name) << id;
    }
    EXPECT_FALSE(s.use->GetMetadata(false));
}

TEST(ApplyNodeToInstance, LeavesNothingToInherit) {
    const Shown s;
    s.definition->SetProperty(Prop::kText, Var(L"definition"));
    EXPECT_EQ(s.use->GetProperty(Prop::kText, 1), Var(L"definition"));
    s.ToInstance();
    EXPECT_TRUE(s.use->GetProperty(Prop::kText, 1).IsEmpty());
}

TEST(ApplyNodeToInstance, LeavesTheServerIdAlone) {
    const Shown s;
    s.use->SetProperty(Prop::kBsId, Var(L"former"));
    s.node->SetParamVar(Param::kBsId, Var(L"node"));
    s.ToInstance();
    EXPECT_EQ(s.use->GetProperty(Prop::kBsId, 0), Var(L"former"));
}

TEST(ApplyNodeToInstance, ReachesEverythingBelow) {
    const Shown s;
    const auto below = NewUse(L"former"), child = NewUse(L"former");
    AddNode(*AddNode(*s.node, L"gap"), L"below", below.Get());
    AddNode(*s.node, L"child", child.Get());
    s.ToInstance();
    EXPECT_EQ(NameOf(*child), L"child");
    EXPECT_EQ(NameOf(*below), L"below");
}

TEST(ApplyNodeToInstance, LeavesDefinitionAndTreeAlone) {
    const Shown s;
    AddNode(*s.node, L"plain");
    s.ToInstance();
    EXPECT_EQ(NameOf(*s.definition), L"former");
    EXPECT_EQ(s.definition->GetChildCount(), 0);
    EXPECT_FALSE(ShownBy(*s.node->GetFirstChild())) << "nothing is made";
}

TEST(ApplyNodeToReference, WritesWhatTheNodeSays) {
    const Shown s;
    const Matrix4<double> place = Shift(1, 2, 3);
    s.node->SetMatrix(&place, 0);
    s.node->SetText(L"text");
    s.node->SetParamVar(Param::kAttachedIdentifier, Var(L"attached"));
    s.ToReference();
    EXPECT_EQ(NameOf(*s.definition), L"node");
    EXPECT_EQ(s.definition->GetProperty(Prop::kLocalMatrix, 0), Var(place));
    EXPECT_EQ(s.definition->GetProperty(Prop::kText, 0), Var(L"text"));
    EXPECT_EQ(s.definition->GetProperty(Prop::kAttachedIdentifier, 0), Var(L"attached"));
    EXPECT_EQ(NameOf(*s.use), L"former");
}

TEST(ApplyNodeToReference, WritesEmptyValuesToo) {
    const Shown s;
    for (const PropEnum id :
         {Prop::kLocalMatrix, Prop::kText, Prop::kLocalId, Prop::kExternalIds, Prop::kOrigin})
        s.definition->SetProperty(id, Var(L"former"));
    s.ToReference();
    for (const PropEnum id :
         {Prop::kLocalMatrix, Prop::kText, Prop::kLocalId, Prop::kExternalIds, Prop::kOrigin})
        EXPECT_TRUE(s.definition->GetProperty(id, 0).IsEmpty()) << Key(id);
}

TEST(ApplyNodeToReference, LeavesTheServerIdAlone) {
    const Shown s;
    s.definition->SetProperty(Prop::kBsId, Var(L"former"));
    s.node->SetParamVar(Param::kBsId, Var(L"node"));
    s.ToReference();
    EXPECT_EQ(s.definition->GetProperty(Prop::kBsId, 0), Var(L"former"));
}

TEST(ApplyNodeToReference, WritesTheMetadataOfAllThree) {
    const Shown s;
    s.definition->SetProperty(Prop::kMetadata,
                              MapOf({{Var(L"a"), Var(1)}, {Var(L"b"), Var(1)}, {Var(L"c"), Var(1)}}));
    s.use->SetProperty(Prop::kMetadata, MapOf({{Var(L"b"), Var(2)}, {Var(L"c"), Var(2)}}));
    s.node->SetMetadata(Cast<VarMap>(MapOf({{Var(L"c"), Var(3)}})));
    s.ToReference();
    EXPECT_EQ(s.definition->GetProperty(Prop::kMetadata, 0),
              MapOf({{Var(L"a"), Var(1)}, {Var(L"b"), Var(2)}, {Var(L"c"), Var(3)}}));
}

TEST(ApplyNodeToReference, WritesMetadataOfItsOwn) {
    const Shown s;
    Var nested = MapOf({{Var(L"group"), MapOf({{Var(L"a"), Var(1)}})}});
    s.node->SetMetadata(Cast<VarMap>(nested));
    s.ToReference();
    nested.At(L"group").At(L"a") = Var(2);
    EXPECT_EQ(s.definition->GetProperty(Prop::kMetadata, 0),
              MapOf({{Var(L"group"), MapOf({{Var(L"a"), Var(1)}})}}));
}

TEST(ApplyNodeToReference, TakesTheObjectIfThereIsOne) {
    const Shown s;
    s.definition->SetTarget(Var(L"former"));
    s.ToReference();
    EXPECT_EQ(s.definition->GetTarget(), Var(L"former"));
    const auto object = Make<k3::Object3D>();
    s.node->SetObject(object.Get());
    s.ToReference();
    EXPECT_EQ(s.definition->GetTarget(), Var(object));
}

TEST(ApplyNodeToReference, TakesANodeThatShowsNothing) {
    const Shown s;
    k3::Node* plain = AddNode(*s.scene, L"plain");
    NewFactory()->ApplyNodeToReference(plain, s.definition.Get());
    EXPECT_EQ(NameOf(*s.definition), L"plain");
}

TEST(ApplyNodeToReference, StaysAtTheNode) {
    const Shown s;
    const auto child = NewUse(L"former");
    AddNode(*s.node, L"child", child.Get());
    s.ToReference();
    EXPECT_EQ(NameOf(*child), L"former");
    EXPECT_EQ(s.definition->GetChildCount(), 0);
}

}  // namespace
}  // namespace qn::test

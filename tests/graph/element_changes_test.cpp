#include "tests/graph/element_changes_fixture.h"

namespace qn::test {
namespace {

TEST_F(ElementChanges, ClearTheReferencesMatrixSharedOrNot) {
    k3::Node* top = Top();
    k3::Node* node = ShownBelow(top, L"n1");
    Reference* reference = Carried(node)->GetReference();
    reference->CreateInstance();
    reference->SetProperty(Prop::kLocalMatrix, Var(Matrix4<double>::Translation(1, 0, 0)));
    Apply(top);
    EXPECT_TRUE(reference->GetProperty(Prop::kLocalMatrix, 0).IsEmpty());
}

TEST_F(ElementChanges, PassOverAnInstanceWithoutReference) {
    k3::Node* node = Top();
    Show(node, Make<InstanceImpl>().Get());
    Apply(node);
    EXPECT_EQ(node->GetMetadata(false), nullptr);
}

TEST_F(ElementChanges, IgnoreANullNode) {
    Apply(nullptr);
    On(nullptr)->StoreElementChanges(nullptr);
}

TEST_F(ElementChanges, StayBelowTheGivenNode) {
    k3::Node* top = Top();
    k3::Node* node = ShownBelow(top, L"n1");
    k3::Node* sibling = ShownBelow(top, L"n2");
    const Var matrix(Matrix4<double>::Translation(1, 0, 0));
    for (const k3::Node* each : {node, sibling})
        Carried(each)->GetReference()->SetProperty(Prop::kLocalMatrix, matrix);
    Apply(node);
    EXPECT_TRUE(Carried(node)->GetReference()->GetProperty(Prop::kLocalMatrix, 0).IsEmpty());
    EXPECT_EQ(Carried(sibling)->GetReference()->GetProperty(Prop::kLocalMatrix, 0), matrix);
}

TEST_F(ElementChanges, ReachTenThousandLevels) {
    k3::Node* top = Top();
    k3::Node* node = top;
    for (int i = 0; i < 10'000; ++i)
        node = node->CreateChildNode(0, 0, 0);
    k3::Node* wheel = ShownBelow(top, L"n1");
    Show(node, Known(L"n2").Get());
    Link(node, PathTo(wheel));
    Apply(top);
    EXPECT_EQ(LinkedNode(node), wheel);
    Store(top);
}

}  // namespace
}  // namespace qn::test

#include "tests/engine/scene/fake_generator.h"
#include "tests/engine/scene/fake_graph.h"
#include "tests/engine/scene/scene_tests.h"

namespace qn::k3 {
namespace {

using test::AddNode;

TEST(NodeClone, CopiesTheSubtreeInOrder) {
    const auto scene = Make<Scene>();
    Node* a = AddNode(*scene, L"a");
    AddNode(*AddNode(*a, L"b"), L"c");
    AddNode(*a, L"d");
    AddNode(*scene, L"beside");
    const auto copy = CountedCast<Node>(a->Clone(1));
    EXPECT_EQ(test::TreeText(*copy), "a(b(c) d)");
    EXPECT_EQ(copy->GetParent(), nullptr);
    EXPECT_EQ(copy->GetScene(), nullptr);
    EXPECT_EQ(copy->GetRefCount(), 1);
}

TEST(NodeClone, CopiesAllFields) {
    const auto node = Make<Node>();
    const auto mesh = Make<Mesh>();
    const auto matrix = Matrix4<double>::Translation(1, 2, 3);
    node->SetName(L"n");
    node->SetDisplayName(L"d");
    node->SetText(L"t");
    node->SetMatrix(&matrix, 0);
    node->SetMatrix(&matrix, 1);
    node->SetThirdMatrix(matrix);
    node->SetFlags(5);
    node->SetAttributeWord(1, 6);
    node->SetIntegerAttribute(7, 0);
    node->SetShortValue(8);
    node->SetOpacity(0.5f);
    node->SetObject(mesh.Get());
    const auto copy = CountedCast<Node>(node->Clone(0));
    Matrix4<double> out;
    EXPECT_EQ(copy->GetName(), String(L"n"));
    EXPECT_EQ(copy->GetDisplayName(), String(L"d"));
    EXPECT_EQ(copy->GetText(), String(L"t"));
    copy->GetMatrix(&out, 0);
    EXPECT_EQ(out, matrix);
    copy->GetMatrix(&out, 1);
    EXPECT_EQ(out, matrix);
    copy->GetThirdMatrix(&out);
    EXPECT_EQ(out, matrix);
    EXPECT_EQ(copy->GetFlags(), 5u);
    EXPECT_EQ(copy->GetAttributeWord(1), 6u);
    EXPECT_EQ(copy->GetIntegerAttribute(), 7);
    EXPECT_EQ(copy->GetShortValue(), 8);
    EXPECT_EQ(copy->GetOpacity(), 0.5f);
    EXPECT_EQ(copy->GetObject(), mesh.Get());
}

TEST(NodeClone, SharesTheInstanceAndCopiesTheMetadata) {
    const auto node = Make<Node>();
    const auto instance = Make<test::FakeInstance>();
    node->SetParamVar(Param::kInstance, Var(instance));
    node->SetMetaValue(Var(L"k"), Var(1));
    const auto copy = CountedCast<Node>(node->Clone(0));
    EXPECT_EQ(copy->GetParamVar(Param::kInstance).ToInterface(), static_cast<Interface*>(instance.Get()));
    EXPECT_NE(copy->GetMetadata(false), node->GetMetadata(false));
    EXPECT_EQ(*copy->GetMetadata(false)->Lookup(Var(L"k")), Var(1));
}

TEST(NodeClone, KeepsTheClass) {
    const auto markup = Make<DetailMarkup>();
    EXPECT_NE(Cast<DetailMarkup>(markup->Clone(0).Get()), nullptr);
}

TEST(NodeClone, OfASceneIsRefused) {
    const auto scene = Make<Scene>();
    EXPECT_FALSE(scene->Clone(0));
}

TEST(NodeClone, WithChildrenLeavesTheGeneratorToTheOriginal) {
    const auto node = Make<Node>();
    const auto generator = Make<test::FakeGenerator>();
    Generator::Attach(node.Get(), generator.Get());
    AddNode(*node, L"a");
    const auto copy = CountedCast<Node>(node->Clone(0));
    EXPECT_EQ(Generator::Get(copy.Get()), nullptr);
    EXPECT_EQ(Generator::Get(node.Get()), generator.Get());
    EXPECT_EQ(generator->detached, 0);
}

TEST(NodeClone, WithoutChildrenSharesTheGenerator) {
    const auto node = Make<Node>();
    const auto generator = Make<test::FakeGenerator>();
    Generator::Attach(node.Get(), generator.Get());
    const auto copy = CountedCast<Node>(node->Clone(0));
    EXPECT_EQ(Generator::Get(copy.Get()), generator.Get());
}

}  // namespace
}  // namespace qn::k3

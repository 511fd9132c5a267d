#include "frame/host/collections.h"
#include "frame/host/node.h"
#include "tests/engine/scene/fake_graph.h"

#include <gtest/gtest.h>

namespace qn::graph {
namespace {

using test::FakeInstance;
using test::FakeReference;

/// A node whose instance inherits the node's name, so that only what a test sets differs.
class OwnAttributes : public ::testing::Test {
protected:
    void SetUp() override {
        node_->SetName(L"n");
        reference_->SetProperty(Prop::kName, Var(L"n"));
        node_->SetParamVar(Param::kInstance, Var(instance_));
    }

    const Counted<k3::Node> node_ = Make<k3::Node>();
    const Counted<FakeReference> reference_ = Make<FakeReference>();
    const Counted<FakeInstance> instance_ = Make<FakeInstance>(reference_.Get());
    SelectorData data_;
};

TEST_F(OwnAttributes, AreNoneWhenTheNodeIsAsItsInstanceSays) {
    EXPECT_FALSE(SelectorHasOwnAttributes(node_.Get(), data_, nullptr, false));
    EXPECT_TRUE(data_.attributes.IsEmpty());
}

TEST_F(OwnAttributes, AreTheValuesThatDiffer) {
    const auto matrix = Matrix4<double>::Translation(1, 2, 3);
    node_->SetName(L"other");
    node_->SetMatrix(&matrix, 0);
    node_->SetMatrix(&matrix, 1);
    node_->SetThirdMatrix(matrix);
    node_->SetIntegerAttribute(4, 0);
    node_->SetShortValue(5);
    node_->SetParamVar(Param::kParam8a, Var(6));
    node_->SetParamVar(Param::kBlockA, Var::Block("a", 1));
    node_->SetParamVar(Param::kWrittenBlockB, Var::Block("b", 1));
    EXPECT_TRUE(SelectorHasOwnAttributes(node_.Get(), data_, nullptr, true));
    const VarMap& found = *data_.attributes.ToMap();
    std::vector<int> keys;
    for (int i = 0; i < found.GetCount(); ++i)
        keys.push_back(found.KeyAt(i).ToInt());
    EXPECT_EQ(keys, (std::vector<int>{7, 8, 6, 2, 1, 3, 0x15, 4, 0x1b}));
    EXPECT_EQ(*found.Lookup(Key(Prop::kName)), Var(L"other"));
    EXPECT_EQ(*found.Lookup(Key(Prop::kLocalMatrix)), Var(matrix));
    EXPECT_EQ(*found.Lookup(Key(Prop::kInteger)), Var(4));
    EXPECT_EQ(*found.Lookup(Key(Prop::kShortValue)), Var(5));
}

TEST_F(OwnAttributes, AValueThatTheDefinitionHasIsNone) {
    const auto matrix = Matrix4<double>::Translation(1, 2, 3);
    reference_->SetProperty(Prop::kLocalMatrix, Var(matrix));
    node_->SetMatrix(&matrix, 0);
    EXPECT_FALSE(SelectorHasOwnAttributes(node_.Get(), data_, nullptr, false));
}

TEST_F(OwnAttributes, AnIdentityIsNoneEvenIfTheInstanceHasAMatrix) {
    instance_->SetProperty(Prop::kLocalMatrix, Var(Matrix4<double>::Translation(1, 2, 3)));
    EXPECT_FALSE(SelectorHasOwnAttributes(node_.Get(), data_, nullptr, false));
}

TEST_F(OwnAttributes, TheExclusionIsNeverRead) {
    node_->SetFlags(NodeFlag::kExcluded | NodeFlag::kStopsInstancing);
    EXPECT_FALSE(SelectorHasOwnAttributes(node_.Get(), data_, nullptr, false));
}

TEST_F(OwnAttributes, WithoutInstanceEverySetValueIsOne) {
    node_->DeleteParam(Param::kInstance);
    EXPECT_TRUE(SelectorHasOwnAttributes(node_.Get(), data_, nullptr, false));
    EXPECT_EQ(data_.attributes.size(), 1);
    EXPECT_EQ(*data_.attributes.Lookup(Key(Prop::kName)), Var(L"n"));
}

TEST_F(OwnAttributes, AnEmptyNameIsAValue) {
    node_->SetName(L"");
    EXPECT_TRUE(SelectorHasOwnAttributes(node_.Get(), data_, nullptr, false));
    EXPECT_EQ(*data_.attributes.Lookup(Key(Prop::kName)), Var(L""));
}

TEST_F(OwnAttributes, ALongNameIsReadThroughABuffer) {
    node_->SetName(std::wstring(600, L'x').c_str());
    EXPECT_TRUE(SelectorHasOwnAttributes(node_.Get(), data_, nullptr, false));
    EXPECT_EQ(data_.attributes.Lookup(Key(Prop::kName))->size(), 511);
}

TEST_F(OwnAttributes, ANullNodeHasNone) {
    EXPECT_FALSE(SelectorHasOwnAttributes(nullptr, data_, nullptr, false));
}

}  // namespace
}  // namespace qn::graph

#include "tests/behaviour/traverser_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

constexpr unsigned kAllFlags = 0x1 | 0x4 | 0x8000 | 0x40000 | 0x200000 | 0x10000000 | 0x20000000;

struct Writer : Stage {
    k3::Node* node = Node(L"");
    Counted<NodeTraverser> at = On(node);

    void Write(PropEnum id, const Var& value) const { at->SetProperty(id, value); }
    /// The flags of the node after writing to one without any.
    unsigned FlagsAfter(int id, const Var& value) const {
        node->SetFlags(0);
        at->SetProperty(PropEnum{id}, value);
        return node->GetFlags();
    }
};

TEST(NodeTraverserFlags, HidesWithTheInverseOfABool) {
    const Writer w;
    w.Write(Prop::kHidden, Var(true));
    EXPECT_EQ(w.node->GetParamVar(Param::kVisible), Var(false));
    EXPECT_EQ(w.node->GetFlags(), 0x1u);
    w.Write(Prop::kHidden, Var(false));
    EXPECT_EQ(w.node->GetParamVar(Param::kVisible), Var(true));
    EXPECT_EQ(w.node->GetFlags(), 0u);
}

TEST(NodeTraverserFlags, HidesWithABoolAlone) {
    const Writer w;
    for (const Var& value : {Var(), Var(1), Var(std::int64_t{1}), Var(1.0), Var(L"true"), Var(Shift(1)),
                             Var(true), ArrayOf({Var(1)}), MapOf({})})
        EXPECT_EQ(w.FlagsAfter(0x05, value), value == Var(true) ? 0x1u : 0u) << int{value.GetTag()};
}

TEST(NodeTraverserFlags, StopsInstancingWhateverTheValue) {
    const Writer w;
    for (const Var& value : {Var(true), Var(false), Var(0), Var(1), Var(std::int64_t{0})}) {
        EXPECT_EQ(w.FlagsAfter(0x11, value), 0x4u);
        EXPECT_EQ(w.FlagsAfter(0x12, value), 0x8000u);
    }
    for (const Var& value : {Var(), Var(1.0), Var(L"true"), Var(Shift(1)), ArrayOf({Var(1)})}) {
        EXPECT_EQ(w.FlagsAfter(0x11, value), 0u) << int{value.GetTag()};
        EXPECT_EQ(w.FlagsAfter(0x12, value), 0u) << int{value.GetTag()};
    }
}

TEST(NodeTraverserFlags, SetsOtherFlagsForTrueValues) {
    const Writer w;
    const struct {
        int id;
        unsigned flags;
    } rows[] = {{0x1a, 0x10000000 | 0x4}, {0x1f, 0x20000000}};
    for (const auto& [id, flags] : rows) {
        for (const Var& value : {Var(true), Var(1), Var(-1.5), Var(L"yes"), ArrayOf({}), Var(Shift(0))})
            EXPECT_EQ(w.FlagsAfter(id, value), flags) << id << " tag " << int{value.GetTag()};
        for (const Var& value : {Var(), Var(false), Var(0), Var(0.0), Var(L"0"), Var(L"False"), Var(L"")})
            EXPECT_EQ(w.FlagsAfter(id, value), 0u) << id << " tag " << int{value.GetTag()};
    }
}

TEST(NodeTraverserFlags, SetsFlag40000ForTheBoolTrueAlone) {
    const Writer w;
    EXPECT_EQ(w.FlagsAfter(0x21, Var(true)), 0x40000u);
    for (const Var& value : {Var(false), Var(1), Var(std::int64_t{1}), Var(L"true"), Var(1.0)})
        EXPECT_EQ(w.FlagsAfter(0x21, value), 0u) << int{value.GetTag()};
}

TEST(NodeTraverserFlags, ClearsNoFlagButTheHiddenOne) {
    const Writer w;
    w.node->SetFlags(kAllFlags);
    for (const int id : {0x11, 0x12, 0x1a, 0x1f, 0x21}) {
        for (const Var& value : {Var(), Var(false), Var(0)})
            w.Write(PropEnum{id}, value);
    }
    EXPECT_EQ(w.node->GetFlags(), kAllFlags);
    w.Write(Prop::kHidden, Var(false));
    EXPECT_EQ(w.node->GetFlags(), kAllFlags & ~0x1u);
}

}  // namespace
}  // namespace qn::test

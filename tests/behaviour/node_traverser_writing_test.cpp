#include "frame/host/object3d.h"
#include "tests/behaviour/traverser_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

struct Writer : Stage {
    k3::Node* node = Node(L"");
    Counted<NodeTraverser> at = On(node);

    void Write(PropEnum id, const Var& value) const { at->SetProperty(id, value); }
};

/// One value of every kind.
std::vector<Var> AllKinds() {
    static const char kBytes[] = "bytes";
    return {Var(),
            Var(7),
            Var(std::int64_t{7}),
            Var(0.5f),
            Var(0.5),
            Var(L"text"),
            Var(true),
            Var::Block(kBytes, 5),
            Var(Shift(1)),
            ArrayOf({}),
            MapOf({{Var(L"a"), Var(1)}}),
            Var(Make<k3::Object3D>())};
}

TEST(NodeTraverserWriting, NamesTheNodeByTheTextOfAnyValue) {
    const Writer w;
    w.Write(Prop::kName, Var(L"wheel"));
    EXPECT_EQ(w.node->GetName(), L"wheel");
    w.Write(Prop::kName, Var(12));
    EXPECT_EQ(w.node->GetName(), L"12");
    const std::wstring tall(0x300, L'x');
    w.Write(Prop::kName, Var(tall.c_str()));
    EXPECT_EQ(w.node->GetName(), String(tall)) << "only reading has a buffer";
}

TEST(NodeTraverserWriting, SetsMatricesFromMatricesAlone) {
    const Writer w;
    w.Write(Prop::kLocalMatrix, Var(Shift(1)));
    w.Write(Prop::kOwnMatrix, Var(Shift(2)));
    w.Write(Prop::kThirdMatrix, Var(Shift(3)));
    for (const Var& value : AllKinds()) {
        if (value.IsMatrix()) continue;
        for (const PropEnum id : {Prop::kLocalMatrix, Prop::kOwnMatrix, Prop::kThirdMatrix})
            w.Write(id, value);
    }
    Matrix4<double> local, own, third;
    w.node->GetMatrix(&local, 0);
    w.node->GetMatrix(&own, 1);
    w.node->GetThirdMatrix(&third);
    EXPECT_EQ(local, Shift(1));
    EXPECT_EQ(own, Shift(2));
    EXPECT_EQ(third, Shift(3));
}

TEST(NodeTraverserWriting, SetsAMatrixBackToTheIdentity) {
    const Writer w;
    w.Write(Prop::kLocalMatrix, Var(Shift(1)));
    w.Write(Prop::kLocalMatrix, Var(Matrix4<double>()));
    EXPECT_TRUE(w.at->GetProperty(Prop::kLocalMatrix, 0).IsEmpty());
}

TEST(NodeTraverserWriting, SetsTheIntegerFromIntegersAlone) {
    const Writer w;
    w.Write(Prop::kInteger, Var(5));
    EXPECT_EQ(w.node->GetIntegerAttribute(), 5);
    w.Write(Prop::kInteger, Var(std::int64_t{6}));
    EXPECT_EQ(w.node->GetIntegerAttribute(), 6);
    for (const Var& value : {Var(), Var(1.5), Var(L"8"), Var(true)}) {
        w.Write(Prop::kInteger, value);
        EXPECT_EQ(w.node->GetIntegerAttribute(), 6) << int{value.GetTag()};
    }
    w.Write(Prop::kInteger, Var(0));
    EXPECT_EQ(w.node->GetIntegerAttribute(), 0);
}

TEST(NodeTraverserWriting, SetsTheShortValueFromIntegersAlone) {
    const Writer w;
    w.Write(Prop::kShortValue, Var(-5));
    EXPECT_EQ(w.node->GetShortValue(), -5);
    w.Write(Prop::kShortValue, Var(std::int64_t{6}));
    for (const Var& value : {Var(), Var(1.5), Var(L"8"), Var(true)})
        w.Write(Prop::kShortValue, value);
    EXPECT_EQ(w.node->GetShortValue(), 6);
}

TEST(NodeTraverserWriting, TakesBlocksToOtherParametersThanItReads) {
    const Writer w;
    w.node->SetParamVar(Param::kBlockA, Var(L"a"));
    w.node->SetParamVar(Param::kBlockB, Var(L"b"));
    const Var block = Var::Block("1234", 4);
    w.Write(Prop::kBlockA, block);
    EXPECT_EQ(w.node->GetParamVar(0x6302), block);
    EXPECT_TRUE(w.node->GetParamVar(0x6303).IsEmpty());
    w.Write(Prop::kBlockB, block);
    EXPECT_EQ(w.node->GetParamVar(0x6303), block);
    EXPECT_EQ(w.at->GetProperty(Prop::kBlockA, 0), Var(L"a"));
    EXPECT_EQ(w.at->GetProperty(Prop::kBlockB, 0), Var(L"b"));
}

TEST(NodeTraverserWriting, TakesBlocksAlone) {
    const Writer w;
    for (const Var& value : AllKinds()) {
        if (value.GetTag() == VarTag::kBlock) continue;
        w.Write(Prop::kBlockA, value);
        w.Write(Prop::kBlockB, value);
        EXPECT_TRUE(w.node->GetParamVar(0x6302).IsEmpty()) << int{value.GetTag()};
        EXPECT_TRUE(w.node->GetParamVar(0x6303).IsEmpty()) << int{value.GetTag()};
    }
}

TEST(NodeTraverserWriting, DropsLinks) {
    const Writer w;
    const auto selector = CreateAs<PersistentSelector>(ClassKey::kPersistentSelector);
    w.node->SetParamVar(Param::kNodeLink9, Var(L"former"));
    for (const Var& value :
         {Var(selector), ArrayOf({Var(selector)}), MapOf({{Var(0), Var(selector)}}), Var(1)})
        w.Write(Prop::kLink, value);
    EXPECT_EQ(w.at->GetProperty(Prop::kLink, 0), Var(L"former"));
    EXPECT_EQ(selector->GetRefCount(), 1);
    EXPECT_TRUE(w.node->GetParamVar(Param::kLinkedNode).IsEmpty());
}

TEST(NodeTraverserWriting, IgnoresLinkLists) {
    const Writer w;
    const Var former = ArrayOf({Var(1)});
    w.node->SetParamVar(Param::kLinkList, former);
    for (const Var& value : AllKinds())
        w.Write(Prop::kLinkList, value);
    EXPECT_EQ(w.at->GetProperty(Prop::kLinkList, 0), former);
}

TEST(NodeTraverserWriting, GivesTheNodeAPrivateCopyOfMetadata) {
    const Writer w;
    Var map = MapOf({{Var(L"group"), MapOf({{Var(L"key"), Var(1)}})}});
    w.Write(Prop::kMetadata, map);
    map.At(L"group").At(L"key") = Var(2);
    EXPECT_EQ(w.at->GetProperty(Prop::kMetadata, 0),
              MapOf({{Var(L"group"), MapOf({{Var(L"key"), Var(1)}})}}));
}

TEST(NodeTraverserWriting, TakesMetadataFromAMapAlone) {
    const Writer w;
    const Var former = MapOf({{Var(L"former"), Var(1)}});
    w.Write(Prop::kMetadata, former);
    for (const Var& value : AllKinds()) {
        if (!value.IsMap()) w.Write(Prop::kMetadata, value);
    }
    EXPECT_EQ(w.at->GetProperty(Prop::kMetadata, 0), former);
}

TEST(NodeTraverserWriting, HandsThreeParametersOnAsTheyAre) {
    const Writer w;
    const struct { int id, parameter; } rows[] = {{0x13, 0x97}, {0x14, 0x9e}, {0x22, 0xae}};
    for (const auto& [id, parameter] : rows) {
        for (const Var& value : {Var(L"text"), Var(0), Var(false), MapOf({{Var(1), Var(2)}}), Var()}) {
            w.Write(PropEnum{id}, value);
            EXPECT_EQ(w.node->GetParamVar(parameter), value) << id << " tag " << int{value.GetTag()};
        }
    }
}

TEST(NodeTraverserWriting, HandsParameter8aOnIfTrue) {
    const Writer w;
    w.Write(Prop::kParam8a, Var(L"value"));
    EXPECT_EQ(w.node->GetParamVar(0x8a), Var(L"value"));
    for (const Var& value : {Var(), Var(0), Var(false), Var(L"0")})
        w.Write(Prop::kParam8a, value);
    EXPECT_EQ(w.node->GetParamVar(0x8a), Var(L"value"));
}

TEST(NodeTraverserWriting, RefusesViewportsWithTrueWhateverTheTrueValue) {
    const Writer w;
    w.Write(Prop::kNoViewports, Var(0));
    EXPECT_TRUE(w.node->GetParamVar(0xa5).IsEmpty());
    w.Write(Prop::kNoViewports, Var(7));
    EXPECT_EQ(w.node->GetParamVar(0xa5), Var(true));
    w.Write(Prop::kNoViewports, Var(false));
    EXPECT_EQ(w.node->GetParamVar(0xa5), Var(true));
}

TEST(NodeTraverserWriting, KeepsTheOpacityBetweenZeroAndOne) {
    const Writer w;
    const struct {
        Var value;
        float opacity;
    } rows[] = {{Var(0.25f), 0.25f}, {Var(0.5), 0.5f},  {Var(1.5f), 1.0f}, {Var(1.5), 1.0f},
                {Var(-1.0f), 0.0f},  {Var(-1.0), 0.0f}, {Var(0.0), 0.0f}};
    for (const auto& [value, opacity] : rows) {
        w.Write(Prop::kOpacity, value);
        EXPECT_EQ(w.node->GetOpacity(), opacity);
    }
}

TEST(NodeTraverserWriting, TakesTheOpacityFromFloatingPointAlone) {
    const Writer w;
    w.Write(Prop::kOpacity, Var(0.5));
    for (const Var& value : AllKinds()) {
        if (value.GetTag() != VarTag::kFloat && value.GetTag() != VarTag::kDouble)
            w.Write(Prop::kOpacity, value);
    }
    EXPECT_EQ(w.node->GetOpacity(), 0.5f);
}

TEST(NodeTraverserWriting, TakesTheTextFromTextAlone) {
    const Writer w;
    w.Write(Prop::kText, Var(L"text"));
    for (const Var& value : AllKinds()) {
        if (!value.IsText()) w.Write(Prop::kText, value);
    }
    EXPECT_EQ(w.node->GetText(), L"text");
    w.Write(Prop::kText, Var(L""));
    EXPECT_EQ(w.node->GetText(), L"");
}

TEST(NodeTraverserWriting, IgnoresAllOtherNumbers) {
    const Writer w;
    for (const int id : {0x00, 0x0a, 0x0b, 0x0d, 0x0e, 0x0f, 0x10, 0x16, 0x17, 0x18, 0x1c, 0x23}) {
        for (const Var& value : AllKinds()) {
            w.Write(PropEnum{id}, value);
            EXPECT_TRUE(w.at->GetProperty(PropEnum{id}, 0).IsEmpty()) << id;
        }
    }
    EXPECT_EQ(w.node->GetFlags(), 0u);
    EXPECT_TRUE(w.node->GetName().IsEmpty());
    EXPECT_EQ(w.node->GetParams(false), nullptr);
    EXPECT_EQ(w.node->GetMetadata(false), nullptr);
}

}  // namespace
}  // namespace qn::test

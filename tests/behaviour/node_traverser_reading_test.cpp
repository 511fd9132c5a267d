#include "frame/host/object3d.h"
#include "tests/behaviour/traverser_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

struct Reader : Stage {
    k3::Node* node = Node(L"");
    Counted<NodeTraverser> at = On(node);

    Var Read(PropEnum id) const { return at->GetProperty(id, 0); }
};

const Var kTrue(true);

TEST(NodeTraverserReading, FindsNothingOnAPlainNode) {
    const Reader r;
    for (int id = 2; id <= kLastProp; ++id)
        EXPECT_TRUE(r.Read(PropEnum{id}).IsEmpty()) << id;
    EXPECT_TRUE(r.Read(PropEnum{0}).IsEmpty());
}

TEST(NodeTraverserReading, MeansNothingByInheritance) {
    const Reader r;
    const auto instance = EnterInstance(*r.table, L"a");
    instance->SetProperty(Prop::kText, Var(L"text"));
    r.node->SetParamVar(Param::kInstance, Var(instance));
    r.EnterInMaps(r.node, instance.Get());
    EXPECT_TRUE(r.at->GetProperty(Prop::kText, 1).IsEmpty());
}

TEST(NodeTraverserReading, GivesTheNameUpToItsBuffer) {
    const Reader r;
    r.node->SetName(L"wheel");
    EXPECT_EQ(r.Read(Prop::kName), Var(L"wheel"));
    r.node->SetName(std::wstring(0x1ff, L'x').c_str());
    EXPECT_EQ(r.Read(Prop::kName).size(), 0x1ff);
    r.node->SetName(std::wstring(0x300, L'x').c_str());
    EXPECT_EQ(r.Read(Prop::kName), Var(std::wstring(0x1ff, L'x').c_str()));
}

TEST(NodeTraverserReading, GivesMatricesThatAreNotTheIdentity) {
    const Reader r;
    const auto first = Shift(1), second = Shift(2);
    r.node->SetMatrix(&first, 0);
    EXPECT_EQ(r.Read(Prop::kLocalMatrix), Var(Shift(1)));
    EXPECT_TRUE(r.Read(Prop::kOwnMatrix).IsEmpty());
    r.node->SetMatrix(&second, 1);
    EXPECT_EQ(r.Read(Prop::kOwnMatrix), Var(Shift(2)));
    EXPECT_TRUE(r.Read(Prop::kThirdMatrix).IsEmpty());
    r.node->SetThirdMatrix(Shift(3));
    EXPECT_EQ(r.Read(Prop::kThirdMatrix), Var(Shift(3)));
    EXPECT_EQ(r.Read(Prop::kLocalMatrix), Var(Shift(1)));
}

TEST(NodeTraverserReading, GivesNoMatrixThatWasSetToTheIdentity) {
    const Reader r;
    const Matrix4<double> identity;
    r.node->SetMatrix(&identity, 0);
    r.node->SetMatrix(&identity, 1);
    r.node->SetThirdMatrix(identity);
    EXPECT_TRUE(r.Read(Prop::kLocalMatrix).IsEmpty());
    EXPECT_TRUE(r.Read(Prop::kOwnMatrix).IsEmpty());
    EXPECT_TRUE(r.Read(Prop::kThirdMatrix).IsEmpty());
}

TEST(NodeTraverserReading, GivesAMatrixThatIsHardlyOffTheIdentity) {
    const Reader r;
    const auto nearly = Shift(1e-12);
    r.node->SetMatrix(&nearly, 0);
    EXPECT_TRUE(r.Read(Prop::kLocalMatrix).IsMatrix());
}

TEST(NodeTraverserReading, GivesFlagsAsTrueOrNotAtAll) {
    const struct {
        unsigned flag;
        std::vector<int> properties;
    } rows[] = {{0x1, {0x05}},        {0x4, {0x11}},     {0x200000, {0x11}}, {0x8000, {0x12}},
                {0x20000000, {0x1f}}, {0x40000, {0x21}}, {0x10000000, {}},   {0x2, {}}};
    for (const auto& [flag, properties] : rows) {
        const Reader r;
        r.node->SetFlags(flag);
        for (const int id : {0x05, 0x11, 0x12, 0x1a, 0x1f, 0x21}) {
            const bool shows = std::find(properties.begin(), properties.end(), id) != properties.end();
            EXPECT_EQ(r.Read(PropEnum{id}), shows ? kTrue : Var()) << std::hex << flag << " as " << id;
        }
    }
}

TEST(NodeTraverserReading, GivesNumbersThatAreNotTheirDefault) {
    const Reader r;
    r.node->SetIntegerAttribute(-5, 0);
    r.node->SetShortValue(7);
    r.node->SetOpacity(0.5f);
    r.node->SetText(L"text");
    EXPECT_EQ(r.Read(Prop::kInteger), Var(-5));
    EXPECT_EQ(r.Read(Prop::kShortValue), Var(7));
    EXPECT_EQ(r.Read(Prop::kOpacity), Var(0.5f));
    EXPECT_EQ(r.Read(Prop::kText), Var(L"text"));
    r.node->SetIntegerAttribute(0, 0);
    r.node->SetShortValue(0);
    r.node->SetOpacity(1.0f);
    r.node->SetText(L"");
    for (const PropEnum id : {Prop::kInteger, Prop::kShortValue, Prop::kOpacity, Prop::kText})
        EXPECT_TRUE(r.Read(id).IsEmpty()) << Key(id);
}

TEST(NodeTraverserReading, GivesAnOpacityOfZero) {
    const Reader r;
    r.node->SetOpacity(0.0f);
    EXPECT_EQ(r.Read(Prop::kOpacity), Var(0.0f));
}

TEST(NodeTraverserReading, GivesParametersAsTheyAre) {
    const struct {
        int id, parameter;
    } rows[] = {{0x07, 7},    {0x08, 8},    {0x09, 9},    {0x13, 0x97},
                {0x14, 0x9e}, {0x1b, 0x8a}, {0x1d, 0xa5}, {0x22, 0xae}};
    for (const auto& [id, parameter] : rows) {
        const Reader r;
        r.node->SetParamVar(parameter, Var(L"value"));
        for (int other = 2; other <= kLastProp; ++other)
            EXPECT_EQ(r.Read(PropEnum{other}), other == id ? Var(L"value") : Var())
                << std::hex << parameter << " as " << other;
    }
}

TEST(NodeTraverserReading, GivesFalseParametersToo) {
    const Reader r;
    r.node->SetParamVar(Param::kNoViewports, Var(false));
    EXPECT_EQ(r.Read(Prop::kNoViewports), Var(false));
}

TEST(NodeTraverserReading, DoesNotGiveThePrimaryIdentifier) {
    const Reader r;
    r.node->SetParamVar(Param::kPrimaryIdentifier, Var(L"value"));
    EXPECT_TRUE(r.Read(Prop::kPrimaryIdentifier).IsEmpty());
}

TEST(NodeTraverserReading, GivesTheMetadataItself) {
    const Reader r;
    EXPECT_TRUE(r.Read(Prop::kMetadata).IsEmpty());
    EXPECT_EQ(r.node->GetMetadata(false), nullptr) << "reading makes none";
    r.node->SetMetaValue(Var(L"note"), Var(1));
    const Var metadata = r.Read(Prop::kMetadata);
    EXPECT_EQ(metadata.ToMap(), r.node->GetMetadata(false));
    EXPECT_FALSE(metadata.IsWeak());
}

TEST(NodeTraverserReading, GivesTheLinkListOnlyAsAnArray) {
    const Reader r;
    Var list = ArrayOf({Var(1)});
    r.node->SetParamVar(Param::kLinkList, Var(list.ToArray(), 0));
    const Var read = r.Read(Prop::kLinkList);
    EXPECT_EQ(read.ToArray(), list.ToArray());
    EXPECT_FALSE(read.IsWeak());
    r.node->SetParamVar(Param::kLinkList, MapOf({{Var(1), Var(2)}}));
    EXPECT_TRUE(r.Read(Prop::kLinkList).IsEmpty());
    r.node->SetParamVar(Param::kLinkList, Var(L"text"));
    EXPECT_TRUE(r.Read(Prop::kLinkList).IsEmpty());
}

TEST(NodeTraverserReading, FollowsTheNodeWithoutRememberingIt) {
    const Reader r;
    r.node->SetName(L"first");
    r.Read(Prop::kName);
    r.node->SetName(L"second");
    EXPECT_EQ(r.Read(Prop::kName), Var(L"second"));
}

TEST(NodeTraverserReading, ServesASelectorOnIt) {
    const Reader r;
    r.node->SetText(L"text");
    Selector selector;
    selector.AssignTraverser(r.at.Get());
    EXPECT_EQ(selector.GetProperty(Prop::kText, 0), Var(L"text"));
    selector.SetProperty(Prop::kName, Var(L"name"));
    EXPECT_EQ(r.node->GetName(), L"name");
}

}  // namespace
}  // namespace qn::test

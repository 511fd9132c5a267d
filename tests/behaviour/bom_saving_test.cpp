// Structures in files.

#include "engine/stream/scene_file.h"
#include "tests/behaviour/bom_scene.h"
#include "tests/behaviour/element_support.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using k3::Bom;

constexpr int kRoot = 0x1000, kNodes = 0x1001;

/// Saves the scene and reads it into another.
struct Reopened {
    explicit Reopened(k3::Scene& scene) {
        const auto context = MakeContext();
        const std::string bytes = SaveSceneToBytes(scene, *context);
        EXPECT_TRUE(LoadSceneFromBytes(bytes, L"again.qn", *again.scene, *context));
    }
    Bom* At(int place) const { return Cast<Bom>(again.scene->GetParamVar(Param::kBoms).ValueAt(place)); }
    BomScene again;
};

TEST(BomSaving, WritesAnEmptyListOfNodes) {
    const BomScene s;
    EXPECT_EQ(TapeOf(*s.AddBom(L"design", true))->OwnIds(), (std::vector<int>{kRoot, kNodes}));
}

TEST(BomReading, SkipsChunksThatNobodyKnows) {
    const BomScene s;
    const auto bom = s.NewBom();
    for (const int id : {0x1002, 0x1003, 0x1005, 0x1007, 0x2000})
        EXPECT_EQ(Feed(*bom, id, s.Node(L"car")), ResultEnum::kSuccess) << id;
    EXPECT_EQ(bom->GetRootNode(), nullptr);
    EXPECT_TRUE(bom->GetNodes().IsEmpty());
    EXPECT_FALSE(bom->GetLayers());
}

TEST(BomFile, BringsStructuresBackAsTheyWere) {
    const BomScene s;
    s.Node(L"wheel", s.Node(L"car"));
    s.AddBom(L"design");
    const auto second = s.AddBom(L"service");
    NodeAt(*second, 0)->SetName(L"copy");
    const Reopened r(*s.scene);
    ASSERT_EQ(r.again.Boms(), (std::vector<std::string>{"design", "service"}));
    EXPECT_EQ(r.again.Current(), r.At(0));
    EXPECT_EQ(NodesOf(*r.At(0)), "car(wheel)");
    EXPECT_EQ(NodesOf(*r.At(1)), "copy(wheel)");
    EXPECT_EQ(Kept(*r.At(1)), "copy(wheel)");
    EXPECT_EQ(NodeAt(*r.At(0), 0), r.again.scene->GetFirstChild()) << "a node that is listed is no other one";
    EXPECT_EQ(NodeAt(*r.At(1), 0), r.At(1)->GetRootNode()->GetFirstChild());
}

}  // namespace
}  // namespace qn::test

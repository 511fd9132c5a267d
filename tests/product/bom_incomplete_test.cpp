#include "tests/product/product_support.h"
#include "tests/support/nested_tape.h"

// Structures that got only a part of their content, as from a damaged file.

namespace qn::test {
namespace {

using k3::BomImpl;

class BomIncomplete : public BomScene {
protected:
    /// With a root that stands in the scene, so that the structure stays with it.
    Counted<BomImpl> WithRootAlone() { return Read(0x1000, Counted<Interface>(d_)); }
    Counted<BomImpl> WithNodesAlone() { return Read(0x1001, VarArray::Create()); }

private:
    Counted<BomImpl> Read(int chunk, Counted<Interface> object) {
        auto bom = Make<BomImpl>(scene_.Get());
        OneObject stream;
        stream.object = std::move(object);
        EXPECT_EQ(bom->HandleChunk(chunk, &stream, nullptr), ResultEnum::kSuccess);
        EXPECT_EQ(bom->GetScene(), scene_.Get());
        return bom;
    }
};

TEST_F(BomIncomplete, IsNotInitialisedAgain) {
    for (const auto& bom : {WithRootAlone(), WithNodesAlone()})
        EXPECT_EQ(ToInt(bom->Initialize(Var(L"n"), false)), -11);
    EXPECT_EQ(Current(), nullptr);
}

TEST_F(BomIncomplete, IsNotUpdatedThoughCurrent) {
    const auto observer = Make<SceneObserver>();
    scene_->AddObserver(observer.Get());
    for (const auto& bom : {WithRootAlone(), WithNodesAlone()}) {
        scene_->SetParamObject(Param::kCurrentBom, bom.Get());
        EXPECT_EQ(ToInt(bom->Update()), -8);
        EXPECT_EQ(NodesOf(*bom), "");
    }
    EXPECT_EQ(observer->BomEvents(), 0);
}

TEST_F(BomIncomplete, IsNotShown) {
    const auto design = AddBom(*scene_, L"design");
    for (const auto& bom : {WithRootAlone(), WithNodesAlone()})
        EXPECT_EQ(ToInt(bom->Activate()), -8);
    EXPECT_EQ(Current(), design.Get());
    EXPECT_EQ(Shown(), "a(b c) d");
}

}  // namespace
}  // namespace qn::test

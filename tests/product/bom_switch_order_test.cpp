#include "tests/product/product_support.h"

namespace qn::test {
namespace {

using k3::Bom;
using k3::BomImpl;

/// A scene that shows "design" and keeps an empty "service"; "d" is worked on.
class BomSwitchOrder : public BomScene {
protected:
    void SetUp() override { scene_->SetCurrentNode(d_); }
    const Counted<BomImpl> design_ = AddBom(*scene_, L"design");
    const Counted<BomImpl> service_ = AddBom(*scene_, L"service", true);
};

TEST_F(BomSwitchOrder, TellsOfTheChangeAfterItAndBeforeTheHostCall) {
    int heard = 0;
    const auto probe = Make<BomEventProbe>([&] {
        ++heard;
        EXPECT_EQ(Current(), service_.Get());
        EXPECT_EQ(Shown(), "");
        EXPECT_EQ(scene_->GetNodeNotices().size(), 1u);
        EXPECT_TRUE(scene_->GetHostCalls().empty());
    });
    scene_->AddObserver(probe.Get());
    service_->Activate();
    EXPECT_EQ(heard, 1);
    EXPECT_EQ(scene_->GetHostCalls().size(), 1u);
}

/// Stands for a structure in the scene, and sees when the scene lets go of it.
class StandIn final : public Interface {
public:
    StandIn(k3::Scene& scene, BomImpl& bom) : scene_(scene), bom_(bom) {}
    void* CastTo(const ClassRecord& wanted) override { return bom_.CastTo(wanted); }
    int Release() noexcept override {
        noticesAtRelease.push_back(scene_.GetNodeNotices().size());
        return Interface::Release();
    }
    std::vector<std::size_t> noticesAtRelease;

private:
    k3::Scene& scene_;
    BomImpl& bom_;
};

TEST_F(BomSwitchOrder, TellsWhichNodeIsWorkedOnBeforeTheCurrentOneChanges) {
    const auto former = Make<StandIn>(*scene_, *design_);
    scene_->SetParamObject(Param::kCurrentBom, former.Get());
    EXPECT_EQ(service_->Activate(), ResultEnum::kSuccess);
    EXPECT_EQ(Current(), service_.Get());
    const auto& seen = former->noticesAtRelease;
    ASSERT_GE(seen.size(), 2u);
    EXPECT_EQ(seen[seen.size() - 2], 1u) << "the scene lets go, then the switch itself does";
}

}  // namespace
}  // namespace qn::test

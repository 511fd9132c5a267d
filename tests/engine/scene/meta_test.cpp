#include "frame/host/meta.h"

#include "tests/engine/scene/fake_graph.h"
#include "tests/engine/scene/scene_tests.h"

namespace qn {
namespace {

using k3::ExtendedMetadata::kAll;
using test::FakeInstance;
using test::FakeReference;

/// A node, its instance and its definition, each with metadata of its own.
class Meta : public ::testing::Test {
protected:
    void SetUp() override {
        node_->SetParamVar(Param::kInstance, Var(instance_));
        Put(*reference_, L"reference");
        Put(*instance_, L"instance");
        Put(*node_, L"node");
    }

    static void Put(Extension& object, const wchar_t* name) {
        object.SetMetaValue(Var(name), Var(true));
        object.SetMetaValue(Var(L"who"), Var(name));
    }

    Var Extended(int mask) const {
        return node_->GetExtendedMetadata(k3::MetadataFormatEnum::kPlain, mask, 0);
    }

    const Counted<k3::Node> node_ = Make<k3::Node>();
    const Counted<FakeReference> reference_ = Make<FakeReference>();
    const Counted<FakeInstance> instance_ = Make<FakeInstance>(reference_.Get());
};

TEST_F(Meta, LaterOnesWinInTheMerge) {
    const Var merged = Extended(kAll);
    EXPECT_EQ(*merged.Lookup(L"who"), Var(L"node"));
    EXPECT_EQ(merged.size(), 4);
}

TEST_F(Meta, TheMaskChooses) {
    EXPECT_EQ(*Extended(k3::ExtendedMetadata::kReference).Lookup(L"who"), Var(L"reference"));
    EXPECT_EQ(*Extended(k3::ExtendedMetadata::kReference | k3::ExtendedMetadata::kInstance).Lookup(L"who"),
              Var(L"instance"));
    EXPECT_TRUE(Extended(0).IsEmpty());
}

TEST_F(Meta, TheMergeIsPrivate) {
    Var merged = Extended(kAll);
    merged.At(L"who") = Var(1);
    EXPECT_EQ(GetMeta(node_.Get(), L"who", 0), Var(L"node"));
    EXPECT_EQ(GetMeta(reference_.Get(), L"who", 0), Var(L"reference"));
}

TEST_F(Meta, AllExistingMetadataIsAKeyOfTheMerge) {
    EXPECT_EQ(meta::GetAllExistingMetadata(node_.Get(), L"reference"), Var(true));
    EXPECT_TRUE(meta::GetAllExistingMetadata(node_.Get(), L"nothing").IsEmpty());
    EXPECT_TRUE(meta::GetAllExistingMetadata(nullptr, L"who").IsEmpty());
}

TEST_F(Meta, AccessGivesTheOwnMetadata) {
    EXPECT_EQ(meta::AccessInstanceMetadata(node_.Get(), false), instance_->GetMetadata(false));
    EXPECT_EQ(meta::AccessReferenceMetadata(node_.Get(), false), reference_->GetMetadata(false));
    EXPECT_EQ(meta::AccessInstanceMetadata(instance_.Get(), false), instance_->GetMetadata(false));
    EXPECT_EQ(meta::AccessReferenceMetadata(reference_.Get(), false), reference_->GetMetadata(false));
    EXPECT_EQ(meta::AccessInstanceMetadata(nullptr, true), nullptr);
}

TEST_F(Meta, AccessOnANodeWithoutInstanceGivesNull) {
    node_->DeleteParam(Param::kInstance);
    EXPECT_EQ(meta::AccessInstanceMetadata(node_.Get(), true), nullptr);
    EXPECT_EQ(meta::AccessReferenceMetadata(node_.Get(), true), nullptr);
}

TEST_F(Meta, KeysAreFlat) {
    SetMeta(node_.Get(), L"a/b", Var(1));
    EXPECT_EQ(GetMeta(node_.Get(), L"a/b", 1), Var(1));
    EXPECT_TRUE(GetMeta(node_.Get(), L"a", 0).IsEmpty());
    EXPECT_TRUE(GetMeta(nullptr, L"a", 0).IsEmpty());
    SetMeta(nullptr, L"a", Var());
}

TEST_F(Meta, ReadingMakesNoMap) {
    const auto node = Make<k3::Node>();
    EXPECT_TRUE(GetMeta(node.Get(), L"a", 0).IsEmpty());
    EXPECT_EQ(node->GetMetadata(false), nullptr);
}

void SetPmiType(Extension& object, const Var& type) {
    Var group;
    group.At(L"PMIType") = type;
    object.SetMetaValue(Var(L"$QN.CAD.PMI"), group);
}

TEST_F(Meta, APmiNodeHasATypeThatIsNotZero) {
    EXPECT_FALSE(hack::IsPMINode(node_.Get()));
    SetPmiType(*node_, Var(0));
    EXPECT_FALSE(hack::IsPMINode(node_.Get()));
    SetPmiType(*node_, Var(2));
    EXPECT_TRUE(hack::IsPMINode(node_.Get()));
    EXPECT_FALSE(hack::IsPMINode(nullptr));
}

TEST(ViewCamera, IsTheViewNodeOfAModelOrStepView) {
    const auto scene = Make<k3::Scene>();
    k3::Node* camera = test::AddNode(*scene, L"camera");
    EXPECT_FALSE(hack::IsModelViewOrStepViewCameraNode(camera));
    k3::Viewport* view = scene->CreateViewport(L"v");
    view->SetViewNode(camera);
    for (const auto& [kind, expected] :
         {std::pair(k3::ViewKind::kOther, false), std::pair(k3::ViewKind::kModel, true),
          std::pair(k3::ViewKind::kStep, true), std::pair(k3::ViewKind::kDetail, false)}) {
        view->SetKind(kind);
        EXPECT_EQ(hack::IsModelViewOrStepViewCameraNode(camera), expected);
    }
    EXPECT_FALSE(hack::IsModelViewOrStepViewCameraNode(nullptr));
}

}  // namespace
}  // namespace qn

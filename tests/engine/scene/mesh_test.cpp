#include "engine/stream/object_file.h"
#include "tests/engine/scene/scene_tests.h"
#include "tests/support/recording_context.h"

namespace qn::k3 {
namespace {

const std::vector<float> kTriangle = {0, 0, 0, 1, 0, 0, 0, 1, 0};

TEST(Mesh, TakesWhatFitsTogether) {
    const auto mesh = Make<Mesh>();
    EXPECT_TRUE(mesh->SetGeometry(kTriangle, kTriangle, {0, 1, 2}, {{0, 3, 0}}));
    EXPECT_EQ(mesh->GetPositions(), kTriangle);
    EXPECT_EQ(mesh->GetIndices().size(), 3u);
    EXPECT_TRUE(mesh->SetGeometry(kTriangle, {}, {}, {}));
    EXPECT_TRUE(mesh->GetNormals().empty());
}

TEST(Mesh, RefusesWhatDoesNotAndStaysAsItWas) {
    const auto mesh = Make<Mesh>();
    ASSERT_TRUE(mesh->SetGeometry(kTriangle, {}, {0, 1, 2}, {}));
    EXPECT_FALSE(mesh->SetGeometry({0, 0}, {}, {}, {}));
    EXPECT_FALSE(mesh->SetGeometry(kTriangle, {0, 0, 1}, {}, {}));
    EXPECT_FALSE(mesh->SetGeometry(kTriangle, {}, {0, 1}, {}));
    EXPECT_FALSE(mesh->SetGeometry(kTriangle, {}, {0, 1, 3}, {}));
    EXPECT_FALSE(mesh->SetGeometry(kTriangle, {}, {0, 1, 2}, {{3, 3, 0}}));
    EXPECT_FALSE(mesh->SetGeometry(kTriangle, {}, {0, 1, 2}, {{0, 2, 0}}));
    EXPECT_FALSE(mesh->SetGeometry(kTriangle, {}, {0, 1, 2}, {{0xffffffff, 3, 0}}));
    EXPECT_EQ(mesh->GetPositions(), kTriangle);
    EXPECT_EQ(mesh->GetIndices().size(), 3u);
}

TEST(Mesh, LendsItsLiveSlots) {
    const auto mesh = Make<Mesh>();
    const auto slots = Make<Collection>();
    EXPECT_FALSE(mesh->CollectMaterialSlots(slots.Get(), 0));
    const auto material = Make<Material>();
    EXPECT_EQ(mesh->AddSlot(material.Get()), 0);
    EXPECT_EQ(mesh->AddSlot(nullptr), 1);
    ASSERT_TRUE(mesh->CollectMaterialSlots(slots.Get(), 0));
    ASSERT_EQ(slots->GetCount(), 2);
    EXPECT_EQ(Cast<MaterialSlot>(slots->Get(0)), mesh->GetSlot(0));
    Cast<MaterialSlot>(slots->Get(1))->SetMaterial(material.Get());
    EXPECT_EQ(mesh->GetSlot(1)->GetMaterial(), material.Get());
    EXPECT_EQ(mesh->GetSlot(2), nullptr);
}

TEST(Mesh, IsStoredWithItsMaterials) {
    const auto context = test::MakeContext();
    const auto mesh = Make<Mesh>();
    ASSERT_TRUE(mesh->SetGeometry(kTriangle, kTriangle, {0, 1, 2}, {{0, 3, 1}}));
    const auto material = Make<Material>();
    material->SetName(L"steel");
    material->SetColour({0.1f, 0.2f, 0.3f, 0.4f});
    mesh->AddSlot(nullptr);
    mesh->AddSlot(material.Get());
    const auto root = LoadFromBytes(SaveToBytes(*mesh, *context), *context);
    const auto* read = Cast<Mesh>(root.Get());
    ASSERT_NE(read, nullptr);
    EXPECT_EQ(read->GetPositions(), kTriangle);
    EXPECT_EQ(read->GetNormals(), kTriangle);
    EXPECT_EQ(read->GetIndices(), (std::vector<std::uint32_t>{0, 1, 2}));
    ASSERT_EQ(read->GetGroups().size(), 1u);
    EXPECT_EQ(read->GetGroups()[0].slot, 1u);
    ASSERT_EQ(read->GetSlotCount(), 2);
    EXPECT_EQ(read->GetSlot(0)->GetMaterial(), nullptr);
    ASSERT_NE(read->GetSlot(1)->GetMaterial(), nullptr);
    EXPECT_EQ(read->GetSlot(1)->GetMaterial()->GetName(), String(L"steel"));
    EXPECT_EQ(read->GetSlot(1)->GetMaterial()->GetColour(), material->GetColour());
}

TEST(Mesh, ClassNames) {
    const auto mesh = Make<Mesh>();
    EXPECT_TRUE(mesh->IsTypeOf("k3_mesh"));
    EXPECT_TRUE(mesh->IsTypeOf("k3_renderable"));
    EXPECT_TRUE(mesh->IsTypeOf("k3_object3d"));
    EXPECT_NE(Cast<Renderable>(static_cast<Object3D*>(mesh.Get())), nullptr);
    EXPECT_EQ(Cast<Object3D>(Make<Generic>().Get()), nullptr);
}

}  // namespace
}  // namespace qn::k3

#include "frame/host/descriptor.h"

#include "frame/host/unique_id.h"
#include "tests/engine/scene/scene_tests.h"

namespace qn::k3 {
namespace {

TEST(Descriptor, IsMadeWhenAskedFor) {
    const auto node = Make<Node>();
    const Var made = GetOrCreateInstanceDescriptor(node.Get(), false);
    ASSERT_TRUE(made.IsMap());
    EXPECT_EQ(GetOrCreateInstanceDescriptor(node.Get(), false).ToMap(), made.ToMap());
    EXPECT_TRUE(GetEntityDescriptor(node.Get()).IsEmpty());
    EXPECT_TRUE(GetOrCreateInstanceDescriptor(nullptr, true).IsEmpty());
    EXPECT_TRUE(GetEntityDescriptor(nullptr).IsEmpty());
}

TEST(Descriptor, OfTheEntityBelongsToTheObject) {
    const auto mesh = Make<Mesh>();
    const auto a = Make<Node>(), b = Make<Node>();
    a->SetObject(mesh.Get());
    b->SetObject(mesh.Get());
    GetOrCreateInstanceDescriptor(a.Get(), true);
    ASSERT_TRUE(GetEntityDescriptor(b.Get()).IsMap());
    EXPECT_EQ(GetEntityDescriptor(a.Get()).ToMap(), GetEntityDescriptor(b.Get()).ToMap());
}

TEST(Descriptor, TakesMetadataThroughTheHelper) {
    const auto node = Make<Node>();
    const auto map = VarMap::Create();
    const Var descriptor = GetOrCreateInstanceDescriptor(node.Get(), false);
    EntityHelper(descriptor).SetMetadata(map.Get());
    EXPECT_EQ(EntityHelper(GetOrCreateInstanceDescriptor(node.Get(), false)).GetMetadata(), map.Get());
    EntityHelper(Var()).SetMetadata(map.Get());
    EXPECT_EQ(EntityHelper(Var()).GetMetadata(), nullptr);
}

TEST(Descriptor, ChangesToAFreshCopy) {
    const auto node = Make<Node>();
    ChangeInstanceDescriptor(node.Get());
    ChangeInstanceDescriptor(nullptr);
    const auto map = VarMap::Create();
    map->At(Var(L"k")) = Var(1);
    const Var before = GetOrCreateInstanceDescriptor(node.Get(), false);
    EntityHelper(before).SetMetadata(map.Get());
    ChangeInstanceDescriptor(node.Get());
    const Var after = GetOrCreateInstanceDescriptor(node.Get(), false);
    EXPECT_NE(after.ToMap(), before.ToMap());
    ASSERT_NE(EntityHelper(after).GetMetadata(), nullptr);
    EXPECT_NE(EntityHelper(after).GetMetadata(), map.Get());
    EXPECT_EQ(*EntityHelper(after).GetMetadata()->Lookup(Var(L"k")), Var(1));
}

TEST(UniqueId, IsKeptWithTheObject) {
    const auto node = Make<Node>();
    EXPECT_FALSE(GetUniqueID(node.Get()).IsValid());
    EXPECT_FALSE(GetUniqueID(nullptr).IsValid());
    const auto model = VarMap::Create();
    SetUniqueID(node.Get(), UniqueId(model.Get(), Var(7)));
    const UniqueId id = GetUniqueID(node.Get());
    ASSERT_TRUE(id.IsValid());
    EXPECT_EQ(id.GetModel(), model.Get());
    const Var number = id.GetObjectId();
    EXPECT_EQ(number, Var(7));
    SetUniqueID(node.Get(), UniqueId());
    EXPECT_FALSE(GetUniqueID(node.Get()).IsValid());
}

}  // namespace
}  // namespace qn::k3

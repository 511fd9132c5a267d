#include "graph/metadata_filter.h"
#include "tests/graph/element_changes_fixture.h"

namespace qn::test {
namespace {

TEST(MetadataFilter, TakesOutEqualEntriesOfTheSameGroup) {
    Var base;
    base.At(L"a").At(L"same") = Var(1);
    base.At(L"a").At(L"other") = Var(2);
    base.At(L"b").At(L"mine") = Var(3);
    Var metadata;
    metadata.At(L"a").At(L"same") = Var(1);
    metadata.At(L"a").At(L"other") = Var(7);
    metadata.At(L"a").At(L"mine") = Var(3);
    metadata.At(L"flat") = Var(1);
    EXPECT_TRUE(RemoveRepeatedMetadata(metadata, base));
    EXPECT_EQ(metadata.Lookup(L"a")->Lookup(L"same"), nullptr);
    EXPECT_EQ(metadata.Lookup(L"a")->size(), 2);
    EXPECT_EQ(metadata.size(), 2);
}

TEST(MetadataFilter, LeavesEmptyGroups) {
    Var metadata;
    metadata.At(L"a").At(L"same") = Var(1);
    Var base = metadata;
    EXPECT_TRUE(RemoveRepeatedMetadata(metadata, base));
    ASSERT_NE(metadata.Lookup(L"a"), nullptr);
    EXPECT_EQ(metadata.Lookup(L"a")->size(), 0);
    EXPECT_EQ(base.Lookup(L"a")->size(), 1);
}

TEST(MetadataFilter, WorksOnAPrivateCopy) {
    Var metadata;
    metadata.At(L"a").At(L"same") = Var(1);
    const Var holder = metadata;
    Var base;
    base.At(L"a").At(L"same") = Var(1);
    RemoveRepeatedMetadata(metadata, base);
    EXPECT_EQ(holder.Lookup(L"a")->size(), 1);
}

TEST(MetadataFilter, DoesNothingWithoutTwoMaps) {
    Var metadata;
    metadata.At(L"a").At(L"same") = Var(1);
    EXPECT_FALSE(RemoveRepeatedMetadata(metadata, Var()));
    Var none;
    EXPECT_FALSE(RemoveRepeatedMetadata(none, metadata));
}

using RepeatedMetadata = ElementChanges;

TEST_F(RepeatedMetadata, GoOutOfInstanceNodeAndSelectorsButNotOutOfTheReference) {
    k3::Node* node = ShownBelow(Top(), L"n1");
    auto* instance = Cast<InstanceImpl>(Carried(node));
    const auto selector = Make<PersistentSelectorImpl>();
    instance->Selectors().At(0) = Var(selector);
    Var shared = Metadata(L"part", L"colour", Var(L"red"));
    shared.At(L"part").At(L"weight") = Var(3);
    Var own = Metadata(L"part", L"colour", Var(L"red"));
    own.At(L"part").At(L"weight") = Var(4);
    instance->GetReference()->SetProperty(Prop::kMetadata, shared);
    instance->SetProperty(Prop::kMetadata, own);
    selector->SetProperty(Prop::kMetadata, own);
    node->SetMetadata(own.ToMap());
    Apply(node);
    for (const Var& metadata :
         {instance->GetProperty(Prop::kMetadata, 0), selector->GetProperty(Prop::kMetadata, 0),
          Var(node->GetMetadata(false), 1)}) {
        EXPECT_EQ(metadata.Lookup(L"part")->Lookup(L"colour"), nullptr);
        EXPECT_EQ(*metadata.Lookup(L"part")->Lookup(L"weight"), Var(4));
    }
    EXPECT_EQ(MetadataOf(instance->GetReference(), L"part", L"colour"), Var(L"red"));
    EXPECT_EQ(own.Lookup(L"part")->size(), 2);
}

TEST_F(RepeatedMetadata, StayInTheReferenceThatSharesItsMapWithTheInstance) {
    k3::Node* node = ShownBelow(Top(), L"n1");
    const Var shared = Metadata(L"part", L"colour", Var(L"red"));
    Carried(node)->GetReference()->SetProperty(Prop::kMetadata, shared);
    Carried(node)->SetProperty(Prop::kMetadata, shared);
    Apply(node);
    EXPECT_EQ(MetadataOf(Carried(node)->GetReference(), L"part", L"colour"), Var(L"red"));
    EXPECT_TRUE(MetadataOf(Carried(node), L"part", L"colour").IsEmpty());
}

}  // namespace
}  // namespace qn::test

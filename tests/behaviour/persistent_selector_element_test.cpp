#include "frame/host/parameter_ids.h"
#include "tests/behaviour/stored_selector.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

TEST(PersistentSelectorElement, StartsLost) {
    const auto selector = NewStoredSelector();
    EXPECT_TRUE(FieldsOf(selector).attributes.IsEmpty());
    EXPECT_TRUE(FieldsOf(selector).idPath.IsEmpty());
    EXPECT_TRUE(FieldsOf(selector).path.empty());
    EXPECT_EQ(selector->GetRefCount(), 1);
}

TEST(PersistentSelectorElement, NamesItsClassAndAncestorsInAnyCase) {
    const auto selector = NewStoredSelector();
    EXPECT_STREQ(selector->GetInterfaceName(), "qn.graph.persistentselector");
    for (const char* name : {"qn.graph.persistentselector", "QN.Graph.PersistentSelector", "k3_refsource",
                             "k3_reftarget", "K3_Extension"})
        EXPECT_TRUE(selector->IsTypeOf(name)) << name;
    for (const char* name : {"qn.graph.instance", "qn.graph.persistentselector2", ""})
        EXPECT_FALSE(selector->IsTypeOf(name)) << name;
}

TEST(PersistentSelectorElement, IsAReferenceSourceAndAHierarchyElement) {
    const auto selector = NewStoredSelector();
    Interface* object = selector.Get();
    EXPECT_EQ(Cast<ReferenceSource>(object), static_cast<ReferenceSource*>(selector.Get()));
    EXPECT_EQ(Cast<HierarchyElement>(object), static_cast<HierarchyElement*>(selector.Get()));
    EXPECT_EQ(Cast<Instance>(object), nullptr);
}

TEST(PersistentSelectorElement, IsReadWithoutLeavingATrace) {
    const auto selector = NewStoredSelector();
    for (int id = kFirstProp; id <= kLastProp; ++id)
        EXPECT_TRUE(selector->GetProperty(PropEnum{id}, 1).IsEmpty()) << id;
    EXPECT_TRUE(FieldsOf(selector).attributes.IsEmpty());
    selector->SetProperty(Prop::kName, Var(L"name"));
    selector->GetProperty(Prop::kText, 0);
    EXPECT_EQ(FieldsOf(selector).attributes.size(), 1);
}

TEST(PersistentSelectorElement, KeepsAttributesInAMapByNumber) {
    const auto selector = NewStoredSelector();
    selector->SetProperty(Prop::kName, Var(L"name"));
    EXPECT_TRUE(FieldsOf(selector).attributes.IsMap());
    EXPECT_EQ(FieldsOf(selector).attributes, MapOf({{Var(1), Var(L"name")}}));
    EXPECT_EQ(selector->GetProperty(Prop::kName, 0), Var(L"name"));
    EXPECT_EQ(selector->GetProperty(Prop::kName, 1), Var(L"name"));
}

TEST(PersistentSelectorElement, KeepsNoPropertyOutsideTheMap) {
    const auto selector = NewStoredSelector();
    for (int id = kFirstProp; id <= kLastProp; ++id)
        selector->SetProperty(PropEnum{id}, Var(100 + id));
    EXPECT_EQ(FieldsOf(selector).attributes.size(), kLastProp + 1);
    for (int id = kFirstProp; id <= kLastProp; ++id)
        EXPECT_EQ(selector->GetProperty(PropEnum{id}, 0), Var(100 + id)) << id;
    EXPECT_EQ(selector->GetMetadata(false), nullptr);
    EXPECT_TRUE(selector->GetParamVar(Param::kBsId).IsEmpty());
}

TEST(PersistentSelectorElement, KeepsEmptyValues) {
    const auto selector = NewStoredSelector();
    selector->SetProperty(Prop::kOrigin, Var());
    EXPECT_EQ(FieldsOf(selector).attributes, MapOf({{Var(0x0a), Var()}}));
    selector->SetProperty(Prop::kName, Var(L"name"));
    selector->SetProperty(Prop::kName, Var());
    EXPECT_EQ(FieldsOf(selector).attributes, MapOf({{Var(0x0a), Var()}, {Var(1), Var()}}));
}

TEST(PersistentSelectorElement, InheritsNothingFromItsPath) {
    const auto instance = NewInstance();
    instance->SetProperty(Prop::kName, Var(L"name"));
    const auto selector = LiveSelector({instance.Get()});
    EXPECT_TRUE(selector->GetProperty(Prop::kName, 1).IsEmpty());
}

TEST(PersistentSelectorElement, HasNoTableAndNoDebugText) {
    const auto table = NewTable();
    const auto selector = LiveSelector({EnterInstance(*table, L"a").Get()});
    EXPECT_EQ(selector->GetLookupTable(), nullptr);
    EXPECT_TRUE(selector->ToDebugString().IsEmpty());
}

TEST(PersistentSelectorElement, WatchesItsPath) {
    auto instance = NewInstance();
    const auto selector = LiveSelector({instance.Get()});
    EXPECT_EQ(instance->GetRefCount(), 1);
    instance.Reset();
    EXPECT_EQ(PathIn(*selector), std::vector<Instance*>{nullptr});
}

TEST(PersistentSelectorElement, CopiesOnlyParametersAndMetadata) {
    const auto instance = NewInstance();
    const auto source = LiveSelector({instance.Get()}), copy = NewStoredSelector();
    source->SetProperty(Prop::kName, Var(L"name"));
    FieldsOf(source).idPath = IdPath({L"a"});
    source->SetParamVar(5, Var(L"value"));
    source->SetMetaValue(Var(L"note"), Var(7));
    EXPECT_EQ(copy->CopyFrom(source.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(copy->GetParamVar(5), Var(L"value"));
    ASSERT_TRUE(copy->GetMetadata(false));
    EXPECT_EQ(*copy->GetMetadata(false)->Lookup(Var(L"note")), Var(7));
    EXPECT_TRUE(FieldsOf(copy).attributes.IsEmpty());
    EXPECT_TRUE(FieldsOf(copy).idPath.IsEmpty());
    EXPECT_TRUE(FieldsOf(copy).path.empty());
}

TEST(PersistentSelectorElement, CopiesFromAnyStoredSelectorAndNothingElse) {
    const auto copy = NewStoredSelector();
    const auto foreign = Make<ForeignSelector>();
    foreign->SetParamVar(5, Var(1));
    EXPECT_EQ(copy->CopyFrom(foreign.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(copy->GetParamVar(5), Var(1));
    EXPECT_EQ(copy->CopyFrom(NewInstance().Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(copy->CopyFrom(NewTable().Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(copy->CopyFrom(nullptr, 0), ResultEnum::kWrongClass);
    EXPECT_EQ(copy->GetParamVar(5), Var(1));
}

}  // namespace
}  // namespace qn::test

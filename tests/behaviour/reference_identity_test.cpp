#include "graph/post_processing_instruction.h"
#include "tests/behaviour/element_support.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace qn::test {
namespace {

using namespace graph;

std::string AddressOf(Reference& reference) {
    return std::to_string(static_cast<int>(reinterpret_cast<std::intptr_t>(dynamic_cast<void*>(&reference))));
}

TEST(ReferenceIdentity, NamesItsClassKeyAndItsAncestors) {
    const auto reference = NewReference();
    EXPECT_STREQ(reference->GetInterfaceName(), "qn.graph.reference");
    for (const char* name : {"QN.graph.Reference", "k3_refsource", "K3_REFTARGET", "k3_extension"})
        EXPECT_TRUE(reference->IsTypeOf(name)) << name;
    for (const char* name : {"qn.graph.instance", "qn.graph.lookuptable", ""})
        EXPECT_FALSE(reference->IsTypeOf(name)) << name;
}

TEST(ReferenceIdentity, IsAReferenceSourceAndAHierarchyElement) {
    const auto reference = NewReference();
    Interface* object = reference.Get();
    EXPECT_EQ(Cast<ReferenceSource>(object), static_cast<ReferenceSource*>(reference.Get()));
    EXPECT_EQ(Cast<HierarchyElement>(object), static_cast<HierarchyElement*>(reference.Get()));
    EXPECT_EQ(Cast<Instance>(object), nullptr);
}

TEST(ReferenceIdentity, StartsWithNothing) {
    const auto reference = NewReference();
    EXPECT_EQ(reference->GetChildCount(), 0);
    EXPECT_EQ(reference->GetInstanceCount(), 0);
    EXPECT_EQ(reference->GetSelectorCount(), 0);
    EXPECT_EQ(reference->GetInstructionCount(), 0);
    EXPECT_TRUE(reference->GetTarget().IsEmpty());
    EXPECT_EQ(reference->GetLookupTable(), nullptr);
    for (int id = kFirstProp; id <= kLastProp; ++id)
        EXPECT_TRUE(reference->GetProperty(PropEnum{id}, 0).IsEmpty()) << id;
    EXPECT_EQ(reference->GetRefCount(), 1);
}

TEST(ReferenceIdentity, WatchesItsTable) {
    auto table = NewTable();
    const int count = table->GetRefCount();
    const auto reference = NewReferenceIn(*table);
    EXPECT_EQ(reference->GetLookupTable(), table);
    EXPECT_EQ(table->GetRefCount(), count);
    table.Reset();
    EXPECT_EQ(reference->GetLookupTable(), nullptr);
}

TEST(ReferenceCopyFrom, TakesParametersAndMetadataAlone) {
    const auto table = NewTable();
    const auto source = NewReferenceIn(*table), copy = NewReference();
    const auto child = NewReference()->CreateInstance();
    source->AddChild(child.Get());
    source->AddInstruction();
    source->AddSelector(PathOf({child.Get()}));
    source->SetTarget(Var(L"file"));
    source->SetProperty(Prop::kName, Var(L"source"));
    source->SetProperty(Prop::kBsId, Var(L"server"));
    source->SetProperty(Prop::kMetadata, MapOf({{Var(L"k"), Var(1)}}));
    EXPECT_EQ(copy->CopyFrom(source.Get(), 0), ResultEnum::kSuccess);

    EXPECT_EQ(copy->GetProperty(Prop::kBsId, 0), Var(L"server"));
    EXPECT_EQ(copy->GetProperty(Prop::kMetadata, 0), MapOf({{Var(L"k"), Var(1)}}));
    EXPECT_NE(copy->GetMetadata(false), source->GetMetadata(false));
    EXPECT_TRUE(copy->GetProperty(Prop::kName, 0).IsEmpty());
    EXPECT_TRUE(copy->GetProperty(Prop::kOrigin, 0).IsEmpty());
    EXPECT_TRUE(copy->GetTarget().IsEmpty());
    EXPECT_EQ(copy->GetLookupTable(), nullptr);
    EXPECT_EQ(copy->GetChildCount() + copy->GetSelectorCount() + copy->GetInstructionCount(), 0);
}

TEST(ReferenceCopyFrom, RefusesAnObjectOfAnotherClass) {
    const auto reference = NewReference();
    const auto instance = NewInstance();
    instance->SetParamVar(7, Var(2));
    EXPECT_EQ(reference->CopyFrom(instance.Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(reference->CopyFrom(nullptr, 0), ResultEnum::kWrongClass);
    EXPECT_TRUE(reference->GetParamVar(7).IsEmpty());
}

TEST(ReferenceDebugText, StatesNameAndAddressOnOneLine) {
    const auto reference = NewReference();
    reference->SetProperty(Prop::kName, Var(L"wheel"));
    EXPECT_EQ(reference->ToDebugString().ToUtf8(),
              "<Reference name=\"wheel\" ref=\"" + AddressOf(*reference) + "\"></Reference>");
}

TEST(ReferenceDebugText, HoldsItsChildrenInOrder) {
    const auto root = NewReference();
    const auto first = NewReference()->CreateInstance(), second = NewReference()->CreateInstance();
    root->AddChild(second.Get());
    root->AddChild(first.Get());
    EXPECT_EQ(root->ToDebugString().ToUtf8(), "<Reference name=\"\" ref=\"" + AddressOf(*root) + "\">" +
                                                  second->ToDebugString().ToUtf8() +
                                                  first->ToDebugString().ToUtf8() + "</Reference>");
}

TEST(ReferenceDebugText, EndsInARing) {
    const auto ring = NewReference();
    ring->SetProperty(Prop::kName, Var(L"ring"));
    const auto use = ring->CreateInstance();
    ring->AddChild(use.Get());
    const std::string text = ring->ToDebugString().ToUtf8();
    EXPECT_NE(text.find("<Instance "), std::string::npos);
    EXPECT_EQ(text.find("<Instance "), text.rfind("<Instance "));
    ring->RemoveChildAt(0);
}

}  // namespace
}  // namespace qn::test

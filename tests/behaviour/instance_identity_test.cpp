#include "tests/behaviour/element_support.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace qn::test {
namespace {

using namespace graph;

std::string AddressOf(Instance& instance) {
    return std::to_string(static_cast<int>(reinterpret_cast<std::intptr_t>(dynamic_cast<void*>(&instance))));
}

TEST(InstanceIdentity, NamesItsClassKey) {
    EXPECT_STREQ(NewInstance()->GetInterfaceName(), "qn.graph.instance");
}

TEST(InstanceIdentity, IsOfItsOwnClassAndItsAncestorsInAnyCase) {
    const auto instance = NewInstance();
    for (const char* name :
         {"qn.graph.instance", "QN.Graph.INSTANCE", "k3_refsource", "k3_reftarget", "K3_Extension"})
        EXPECT_TRUE(instance->IsTypeOf(name)) << name;
    for (const char* name : {"qn.graph.reference", "k3_node", "", "qn.graph.instance "})
        EXPECT_FALSE(instance->IsTypeOf(name)) << name;
    EXPECT_FALSE(instance->IsTypeOf(nullptr));
}

TEST(InstanceIdentity, IsAReferenceSourceAndAHierarchyElement) {
    const auto instance = NewInstance();
    Interface* object = instance.Get();
    EXPECT_EQ(Cast<ReferenceSource>(object), static_cast<ReferenceSource*>(instance.Get()));
    EXPECT_EQ(Cast<HierarchyElement>(object), static_cast<HierarchyElement*>(instance.Get()));
    EXPECT_EQ(Cast<Reference>(object), nullptr);
}

TEST(InstanceIdentity, StartsWithNothing) {
    const auto instance = NewInstance();
    EXPECT_EQ(instance->GetReference(), nullptr);
    EXPECT_EQ(instance->GetParentReference(), nullptr);
    EXPECT_EQ(instance->GetSelectorCount(), 0);
    EXPECT_EQ(instance->GetLookupTable(), nullptr);
    for (int id = kFirstProp; id <= kLastProp; ++id)
        EXPECT_TRUE(instance->GetProperty(PropEnum{id}, 1).IsEmpty()) << id;
    EXPECT_EQ(instance->GetRefCount(), 1);
}

TEST(InstanceIdentity, KeepsItsDefinitionAliveUntilItDies) {
    auto reference = NewReference();
    const Weak<Reference> watch(reference.Get());
    auto instance = reference->CreateInstance();
    reference.Reset();
    EXPECT_EQ(instance->GetReference(), watch.Get());
    EXPECT_NE(watch.Get(), nullptr);
    instance.Reset();
    EXPECT_EQ(watch.Get(), nullptr);
}

TEST(InstanceIdentity, LendsItsDefinitionAndItsParent) {
    const auto reference = NewReference(), parent = NewReference();
    const auto instance = reference->CreateInstance();
    parent->AddChild(instance.Get());
    const int definitionCount = reference->GetRefCount(), parentCount = parent->GetRefCount();
    EXPECT_EQ(instance->GetReference(), reference);
    EXPECT_EQ(instance->GetParentReference(), parent);
    EXPECT_EQ(reference->GetRefCount(), definitionCount);
    EXPECT_EQ(parent->GetRefCount(), parentCount);
}

TEST(InstanceIdentity, HasTheParentThatItWasAddedTo) {
    const auto parent = NewReference();
    const auto instance = NewReference()->CreateInstance();
    parent->AddChild(instance.Get());
    EXPECT_EQ(instance->GetParentReference(), parent);
    parent->RemoveChild(instance.Get());
    EXPECT_EQ(instance->GetParentReference(), nullptr);
    parent->AddChild(instance.Get());
    parent->RemoveChildAt(0);
    EXPECT_EQ(instance->GetParentReference(), nullptr);
}

TEST(InstanceIdentity, WatchesItsParentWithoutHoldingIt) {
    auto parent = NewReference();
    const auto instance = NewReference()->CreateInstance();
    parent->AddChild(instance.Get());
    EXPECT_EQ(parent->GetRefCount(), 1);
    parent.Reset();
    EXPECT_EQ(instance->GetParentReference(), nullptr);
}

TEST(InstanceIdentity, CannotDieInAChildList) {
    const auto parent = NewReference();
    auto instance = NewReference()->CreateInstance();
    const Weak<Instance> watch(instance.Get());
    parent->AddChild(instance.Get());
    instance.Reset();
    ASSERT_NE(watch.Get(), nullptr);
    EXPECT_EQ(parent->GetChild(0), watch.Get());
}

/// Notes its death.
class Mortal final : public Interface {
public:
    Mortal(std::vector<std::string>& deaths, std::string name) : deaths_(deaths), name_(std::move(name)) {}
    ~Mortal() override { deaths_.push_back(name_); }

private:
    std::vector<std::string>& deaths_;
    std::string name_;
};

TEST(InstanceIdentity, LetsGoOfPropertiesThenSelectorsThenDefinition) {
    std::vector<std::string> deaths;
    auto reference = NewReference();
    reference->SetTarget(Var(Make<Mortal>(deaths, "definition")));
    auto instance = reference->CreateInstance();
    reference.Reset();
    Feed(*instance, 0x1002, MapOf({{Var(0), Var(Make<Mortal>(deaths, "selectors"))}}).ToMap());
    instance->SetProperty(Prop::kName, Var(Make<Mortal>(deaths, "properties")));
    EXPECT_TRUE(deaths.empty());
    instance.Reset();
    EXPECT_EQ(deaths, (std::vector<std::string>{"properties", "selectors", "definition"}));
}

TEST(InstanceCopy, TakesParametersAndMetadataAlone) {
    const auto table = NewTable();
    const auto parent = NewReferenceIn(*table), used = NewReferenceIn(*table), other = NewReference();
    const auto source = used->CreateInstance();
    parent->AddChild(source.Get());
    source->SetProperty(Prop::kName, Var(L"source"));
    source->SetProperty(Prop::kBsId, Var(L"server"));
    source->SetParamVar(0x1234, Var(5));
    source->SetProperty(Prop::kMetadata, MapOf({{Var(L"material"), Var(L"steel")}}));
    source->AddLocalSelector(PathOf({source.Get()}));

    const auto copy = other->CreateInstance();
    copy->SetProperty(Prop::kName, Var(L"copy"));
    EXPECT_EQ(copy->CopyFrom(source.Get(), 0), ResultEnum::kSuccess);

    EXPECT_EQ(copy->GetParamVar(0x1234), Var(5));
    EXPECT_EQ(copy->GetProperty(Prop::kBsId, 0), Var(L"server"));
    EXPECT_EQ(copy->GetProperty(Prop::kMetadata, 0), MapOf({{Var(L"material"), Var(L"steel")}}));
    EXPECT_EQ(copy->GetReference(), other);
    EXPECT_EQ(copy->GetParentReference(), nullptr);
    EXPECT_EQ(copy->GetSelectorCount(), 0);
    EXPECT_EQ(copy->GetProperty(Prop::kName, 0), Var(L"copy"));
}

TEST(InstanceCopy, OwnsTheMetadataThatItTook) {
    const auto source = NewInstance(), copy = NewInstance();
    source->SetProperty(Prop::kMetadata, MapOf({{Var(L"a"), Var(1)}}));
    copy->CopyFrom(source.Get(), 0);
    copy->GetMetadata(true)->At(Var(L"a")) = Var(2);
    EXPECT_EQ(source->GetProperty(Prop::kMetadata, 0), MapOf({{Var(L"a"), Var(1)}}));
}

TEST(InstanceCopy, RefusesAnObjectOfAnotherClass) {
    const auto instance = NewInstance();
    instance->SetParamVar(7, Var(1));
    const auto reference = NewReference();
    reference->SetParamVar(7, Var(2));
    EXPECT_EQ(instance->CopyFrom(reference.Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(instance->CopyFrom(nullptr, 0), ResultEnum::kWrongClass);
    EXPECT_EQ(instance->GetParamVar(7), Var(1));
}

TEST(InstanceDebugText, StatesNameAndAddressOnOneLine) {
    const auto instance = NewInstance();
    instance->SetProperty(Prop::kName, Var(L"left wheel"));
    EXPECT_EQ(instance->ToDebugString().ToUtf8(),
              "<Instance name=\"left wheel\" ref=\"" + AddressOf(*instance) + "\"></Instance>");
}

TEST(InstanceDebugText, HoldsTheTextOfItsDefinitionAndDoesNotTakeItsName) {
    const auto reference = NewReference();
    reference->SetProperty(Prop::kName, Var(L"wheel"));
    const auto instance = reference->CreateInstance();
    EXPECT_EQ(instance->ToDebugString().ToUtf8(), "<Instance name=\"\" ref=\"" + AddressOf(*instance) +
                                                      "\">" + reference->ToDebugString().ToUtf8() +
                                                      "</Instance>");
}

}  // namespace
}  // namespace qn::test

#include "tests/graph/graph_support.h"
#include "tests/support/failing_stream.h"

namespace qn::test {

namespace {

std::vector<std::string> LogOfSave(ReferenceSource& element) {
    FailingStream stream;
    EXPECT_EQ(element.Save(&stream, nullptr), ResultEnum::kSuccess);
    return stream.Log();
}

bool HasKey(const InstanceImpl& loaded, PropEnum id) {
    const auto reference = MakeReference();
    reference->SetProperty(id, Var(L"inherited"));
    const auto copy = Counted<InstanceImpl>(const_cast<InstanceImpl*>(&loaded));
    copy->SetReference(reference.Get());
    return copy->GetProperty(id, 1) != Var(L"inherited");  // a key that is there is not inherited
}

}  // namespace

TEST(InstancePersistence, KeepsPropertiesAndParameters) {
    const auto instance = MakeInstance();
    instance->SetProperty(Prop::kName, Var(L"door"));
    instance->SetProperty(Prop::kBsId, Var(L"s:1"));
    const auto loaded = ReloadedAs(*instance);
    EXPECT_EQ(loaded->GetProperty(Prop::kName, 0), Var(L"door"));
    EXPECT_EQ(loaded->GetParamVar(0x9e), Var(L"s:1"));
}

TEST(InstancePersistence, LeavesTheLocalIdOut) {
    const auto instance = MakeInstance();
    instance->SetProperty(Prop::kLocalId, Var(L"n1"));
    const auto loaded = ReloadedAs(*instance);
    EXPECT_TRUE(loaded->GetProperty(Prop::kLocalId, 0).IsEmpty());
    EXPECT_FALSE(HasKey(*loaded, Prop::kLocalId));
    EXPECT_EQ(instance->GetProperty(Prop::kLocalId, 0), Var(L"n1"));
}

TEST(InstancePersistence, KeepsTheLocalIdOfAMarkedElement) {
    const auto instance = MakeInstance();
    instance->SetProperty(Prop::kLocalId, Var(L"n1"));
    instance->SetProperty(Prop::kKeepLocalId, Var(true));
    EXPECT_EQ(ReloadedAs(*instance)->GetProperty(Prop::kLocalId, 0), Var(L"n1"));
}

TEST(InstancePersistence, SavesAMissingLocalIdAsAnEmptyKey) {
    const auto loaded = ReloadedAs(*MakeInstance());
    EXPECT_TRUE(HasKey(*loaded, Prop::kLocalId));
    EXPECT_TRUE(loaded->GetProperty(Prop::kLocalId, 1).IsEmpty());
}

TEST(InstancePersistence, TouchesTheMarkOnlyWhereThereIsALocalId) {
    EXPECT_FALSE(HasKey(*ReloadedAs(*MakeInstance()), Prop::kKeepLocalId));
    const auto withId = MakeInstance();
    withId->SetProperty(Prop::kLocalId, Var(L"n1"));
    EXPECT_TRUE(HasKey(*ReloadedAs(*withId), Prop::kKeepLocalId));
}

TEST(InstancePersistence, WritesItsChunksInOrder) {
    const auto reference = MakeReference();
    const auto instance = MakeInstance(reference.Get());
    instance->AddLocalSelector(PathOf({instance.Get()}));
    EXPECT_EQ(LogOfSave(*instance),
              (std::vector<std::string>{"object 1000 k3_varmap", "object 1001 qn.graph.reference",
                                        "object 1002 k3_varmap"}));
}

TEST(InstancePersistence, WritesNoChunkForAMissingReferenceOrNoSelectors) {
    const auto instance = MakeInstance();
    instance->AddLocalSelector(PathOf({instance.Get()}));
    instance->RemoveSelector(0);
    EXPECT_EQ(LogOfSave(*instance), std::vector<std::string>{"object 1000 k3_varmap"});
}

TEST(InstancePersistence, EndsWithTheResultOfAFailedBase) {
    const auto instance = MakeInstance();
    instance->SetParamVar(1, Var(1));
    FailingStream stream;
    stream.FailBeginChunk(1);
    EXPECT_LT(ToInt(instance->Save(&stream, nullptr)), 1);
    for (const std::string& line : stream.Log())
        EXPECT_NE(line.substr(0, 6), "object");
}

TEST(InstancePersistence, TwoUsesOfOneReferenceShareItAfterALoad) {
    const auto part = MakeReference();
    const auto car = MakeReference();
    AddChildren(*car, {part->CreateInstance().Get(), part->CreateInstance().Get()});
    const auto loaded = ReloadedAs(*car);
    ASSERT_EQ(loaded->GetChildCount(), 2);
    ASSERT_NE(loaded->GetChild(0)->GetReference(), nullptr);
    EXPECT_EQ(loaded->GetChild(0)->GetReference(), loaded->GetChild(1)->GetReference());
}

TEST(InstancePersistence, DoesNotRestoreTheParent) {
    const auto car = MakeReference();
    car->AddChild(MakeReference()->CreateInstance().Get());
    const auto loaded = ReloadedAs(*car);
    const auto child = loaded->GetChild(0);
    EXPECT_EQ(child->GetParentReference(), nullptr);
    EXPECT_TRUE(loaded->HasChild(child.Get()));
    loaded->AddChild(child.Get());
    EXPECT_EQ(child->GetParentReference(), nullptr);
}

TEST(InstancePersistence, SelectorsSurvive) {
    const auto car = MakeReference();
    const auto wheel = MakeInstance(MakeReference().Get());
    car->AddChild(wheel.Get());
    wheel->AddLocalSelector(PathOf({wheel.Get()}));
    const auto loaded = ReloadedAs(*car);
    const auto child = CountedCast<InstanceImpl>(loaded->GetChild(0));
    ASSERT_EQ(child->GetSelectorCount(), 1);
    const auto* selector = Cast<PersistentSelectorImpl>(*child->Selectors().Lookup(0));
    ASSERT_NE(selector, nullptr);
    EXPECT_EQ(Targets(*selector), std::vector<Instance*>{child.Get()});
}

TEST(InstancePersistence, AnObjectOfAnotherClassEmptiesTheField) {
    const auto reference = MakeReference();
    const auto instance = MakeInstance(reference.Get());
    instance->SetProperty(Prop::kName, Var(L"door"));
    instance->AddLocalSelector(PathOf({instance.Get()}));
    ObjectStream stream(VarArray::Create().Get());
    for (const int id : {0x1000, 0x1001, 0x1002})
        EXPECT_EQ(instance->HandleChunk(id, &stream, nullptr), ResultEnum::kSuccess);
    EXPECT_EQ(instance->GetReference(), nullptr);
    EXPECT_EQ(instance->GetSelectorCount(), 0);
    EXPECT_TRUE(instance->GetProperty(Prop::kName, 0).IsEmpty());
}

TEST(InstancePersistence, AnUnknownChunkIsTheBasesToSkip) {
    ObjectStream stream(nullptr);
    EXPECT_EQ(MakeInstance()->HandleChunk(0x1003, &stream, nullptr), ResultEnum::kSuccess);
}

}  // namespace qn::test

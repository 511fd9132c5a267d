#include "frame/host/object3d.h"
#include "tests/graph/graph_support.h"

namespace qn::test {

TEST(ReferenceCopy, RemembersTheServerIdOfItsSource) {
    const auto source = MakeReference();
    source->SetProperty(Prop::kBsId, Var(L"s:1"));
    source->SetProperty(Prop::kOrigin, Var(L"s:0"));
    EXPECT_EQ(source->CreateCopy()->GetProperty(Prop::kOrigin, 0), Var(L"s:1"));
}

TEST(ReferenceCopy, RemembersTheServerIdOfItsSourcesOrigin) {
    const auto origin = MakeReference();
    origin->SetProperty(Prop::kBsId, Var(L"s:0"));
    const auto source = MakeReference();
    source->SetProperty(Prop::kOrigin, Var(origin));
    EXPECT_EQ(source->CreateCopy()->GetProperty(Prop::kOrigin, 0), Var(L"s:0"));
}

TEST(ReferenceCopy, RemembersTheTextThatItsSourceRemembers) {
    const auto source = MakeReference();
    source->SetProperty(Prop::kOrigin, Var(L"s:0"));
    EXPECT_EQ(source->CreateCopy()->GetProperty(Prop::kOrigin, 0), Var(L"s:0"));
}

TEST(ReferenceCopy, RemembersNothingOfAnOriginWithoutServerId) {
    const auto source = MakeReference();
    source->SetProperty(Prop::kOrigin, Var(MakeReference()));
    EXPECT_TRUE(source->CreateCopy()->GetProperty(Prop::kOrigin, 0).IsEmpty());
    source->SetProperty(Prop::kOrigin, Var(7));
    EXPECT_TRUE(source->CreateCopy()->GetProperty(Prop::kOrigin, 0).IsEmpty());
}

TEST(ReferenceCopy, LeavesOutOriginLocalIdServerIdAndOneMore) {
    const auto source = MakeReference();
    for (int key = kFirstProp; key <= kLastProp; ++key)
        source->SetProperty(PropEnum{key}, Var(key + 100));
    Var metadata;
    metadata.At(L"colour") = Var(L"red");
    source->SetProperty(Prop::kMetadata, metadata);
    const auto copy = source->CreateCopy();
    for (int key = kFirstProp; key <= kLastProp; ++key) {
        const Var value = copy->GetProperty(PropEnum{key}, 0);
        if (key == 0x0a)
            EXPECT_EQ(value, Var(0x14 + 100)) << key;  // the source's server id
        else if (key == 0x0f || key == 0x14 || key == 0x1c)
            EXPECT_TRUE(value.IsEmpty()) << key;
        else
            EXPECT_EQ(value, source->GetProperty(PropEnum{key}, 0)) << key;
    }
}

TEST(ReferenceCopy, TakesTargetAndTableButNoChildren) {
    const auto table = Make<LookupTableImpl>();
    const auto source = MakeReference(table.Get());
    source->SetTarget(Var(L"door.qn"));
    source->AddChild(MakeInstance().Get());
    source->AddSelectorPath(IdsOf({L"n1"}));
    source->AddInstruction();
    const auto copy = source->CreateCopy();
    EXPECT_EQ(copy->GetTarget(), Var(L"door.qn"));
    EXPECT_EQ(copy->GetLookupTable(), table.Get());
    EXPECT_EQ(copy->GetChildCount() + copy->GetSelectorCount() + copy->GetInstructionCount(), 0);
    EXPECT_TRUE(table->references.empty());
}

TEST(ReferenceCopy, WithATableOfItsOwnDoesNotTakeTheSources) {
    const auto table = Make<LookupTableImpl>();
    const auto other = Make<LookupTableImpl>();
    const auto source = MakeReference(table.Get());
    EXPECT_EQ(Make<ReferenceImpl>(source.Get(), other.Get())->GetLookupTable(), other.Get());
    EXPECT_EQ(Make<ReferenceImpl>(source.Get())->GetLookupTable(), table.Get());
}

TEST(ReferenceContent, OfNothingChangesNothing) {
    const auto reference = MakeReference();
    reference->SetTarget(Var(L"door.qn"));
    reference->CopyContentFrom(nullptr);
    EXPECT_EQ(reference->GetTarget(), Var(L"door.qn"));
}

TEST(ReferenceContent, ReplacesAnEmptyTargetAndAFileName) {
    const auto source = MakeReference();
    source->SetTarget(Var(Make<k3::Object3D>()));
    for (const Var& former : {Var(), Var(L"door.qn")}) {
        const auto reference = MakeReference();
        reference->SetTarget(former);
        reference->CopyContentFrom(source.Get());
        EXPECT_EQ(reference->GetTarget(), source->GetTarget());
    }
}

TEST(ReferenceContent, BecomesAChildWhereThereIsARealTarget) {
    const auto table = Make<LookupTableImpl>();
    const auto reference = MakeReference(table.Get());
    const Var own(Make<k3::Object3D>());
    reference->SetTarget(own);
    const auto source = MakeReference();
    source->SetTarget(Var(Make<k3::Object3D>()));
    reference->CopyContentFrom(source.Get());
    EXPECT_EQ(reference->GetTarget(), own);
    ASSERT_EQ(reference->GetChildCount(), 1);
    EXPECT_EQ(reference->GetChild(0)->GetReference()->GetTarget(), source->GetTarget());
}

TEST(ReferenceContent, WithoutTableTheOtherTargetIsPassedOver) {
    const auto reference = MakeReference();
    reference->SetTarget(Var(Make<k3::Object3D>()));
    const auto source = MakeReference();
    source->SetTarget(Var(Make<k3::Object3D>()));
    reference->CopyContentFrom(source.Get());
    EXPECT_EQ(reference->GetChildCount(), 0);
}

TEST(ReferenceContent, CopiesTheServerIdAndEmptyValuesButNoLocalId) {
    const auto reference = MakeReference();
    reference->SetProperty(Prop::kName, Var(L"door"));
    reference->SetProperty(Prop::kLocalId, Var(L"e1"));
    const auto source = MakeReference();
    source->SetProperty(Prop::kBsId, Var(L"s:1"));
    source->SetProperty(Prop::kLocalId, Var(L"e2"));
    reference->CopyContentFrom(source.Get());
    EXPECT_EQ(reference->GetProperty(Prop::kBsId, 0), Var(L"s:1"));
    EXPECT_TRUE(reference->GetProperty(Prop::kName, 0).IsEmpty());
    EXPECT_EQ(reference->GetProperty(Prop::kLocalId, 0), Var(L"e1"));
}

TEST(ReferenceContent, ChildrenStayInTheSourcesListAndChangeTheirParent) {
    const auto reference = MakeReference();
    const auto source = MakeReference();
    const auto child = MakeInstance();
    source->AddChild(child.Get());
    reference->CopyContentFrom(source.Get());
    EXPECT_TRUE(source->HasChild(child.Get()));
    EXPECT_TRUE(reference->HasChild(child.Get()));
    EXPECT_EQ(child->GetParentReference(), reference.Get());
}

}  // namespace qn::test

#include "frame/host/object3d.h"
#include "graph/post_processing_instruction.h"
#include "tests/behaviour/element_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

constexpr int kProperties = 0x1000;

Counted<Reference> WithOrigin(const Var& origin) {
    auto reference = NewReference();
    reference->SetProperty(Prop::kOrigin, origin);
    return reference;
}

/// A property that is stored as it is, with no meaning to a reference.
bool IsPlain(int id) {
    for (const int special : {0x0a, 0x0c, 0x0f, 0x13, 0x14, 0x16, 0x1c, 0x22, 0x23}) {
        if (id == special) return false;
    }
    return true;
}

TEST(ReferenceCopy, HasTheTargetAndTheProperties) {
    const auto source = NewReference();
    const Var target = Var(Make<k3::Object3D>());
    source->SetTarget(target);
    for (int id = kFirstProp; id <= kLastProp; ++id) {
        if (IsPlain(id)) source->SetProperty(PropEnum{id}, Var(100 + id));
    }
    for (const int id : {0x13, 0x22, 0x23})
        source->SetProperty(PropEnum{id}, Var(100 + id));
    const auto copy = source->CreateCopy();
    EXPECT_EQ(copy->GetTarget().ToInterface(), target.ToInterface());
    for (int id = kFirstProp; id <= kLastProp; ++id) {
        if (IsPlain(id)) {
            EXPECT_EQ(copy->GetProperty(PropEnum{id}, 0), Var(100 + id)) << id;
        }
    }
    for (const int id : {0x13, 0x22, 0x23})
        EXPECT_EQ(copy->GetProperty(PropEnum{id}, 0), Var(100 + id)) << id;
    EXPECT_EQ(copy->GetRefCount(), 1);
}

TEST(ReferenceCopy, LeavesOutLocalIdServerIdAndProperty1c) {
    const auto source = NewReference();
    for (const PropEnum id : {Prop::kLocalId, Prop::kBsId, Prop::kNotCopied1c})
        source->SetProperty(id, Var(L"x"));
    const auto copy = source->CreateCopy();
    for (const PropEnum id : {Prop::kLocalId, Prop::kBsId, Prop::kNotCopied1c})
        EXPECT_TRUE(copy->GetProperty(id, 0).IsEmpty()) << Key(id);
    EXPECT_FALSE(SavesProperty(*copy, Prop::kNotCopied1c));
}

TEST(ReferenceCopy, HasAKeyForEveryCopiedPropertyEvenIfEmpty) {
    const auto copy = NewReference()->CreateCopy();
    const Var saved = SavedMap(*copy, kProperties);
    for (int id = kFirstProp; id <= kLastProp; ++id) {
        if (IsPlain(id)) {
            EXPECT_NE(saved.Lookup(id), nullptr) << id;
        }
    }
    EXPECT_EQ(saved.Lookup(Key(Prop::kOrigin)), nullptr);
}

TEST(ReferenceCopy, SharesTheMetadata) {
    const auto source = NewReference();
    source->SetProperty(Prop::kMetadata, MapOf({{Var(L"k"), Var(1)}}));
    EXPECT_EQ(source->CreateCopy()->GetMetadata(false), source->GetMetadata(false));
}

TEST(ReferenceCopy, KeepsTheAnswerAboutGenericContent) {
    const auto source = NewReference();
    const auto generic = Make<k3::Generic>();
    generic->SetParamVar(0x40b, Var(1));
    source->SetProperty(Prop::kBsId, Var(L"server"));
    source->SetTarget(Var(generic));
    const auto copy = source->CreateCopy();
    generic->SetParamVar(0x40b, Var(0));
    EXPECT_EQ(copy->GetProperty(Prop::kGenericContent, 0), Var(true));
    EXPECT_EQ(source->GetProperty(Prop::kGenericContent, 0), Var(false));
}

TEST(ReferenceCopy, HasNoChildrenUsesSelectorsAndInstructions) {
    const auto table = NewTable();
    const auto source = NewReferenceIn(*table);
    const auto use = source->CreateInstance(), child = NewReference()->CreateInstance();
    source->AddChild(child.Get());
    source->AddSelector(PathOf({child.Get()}));
    source->AddInstruction();
    const auto copy = source->CreateCopy();
    EXPECT_EQ(copy->GetChildCount(), 0);
    EXPECT_EQ(copy->GetInstanceCount(), 0);
    EXPECT_EQ(copy->GetSelectorCount(), 0);
    EXPECT_EQ(copy->GetInstructionCount(), 0);
    EXPECT_EQ(child->GetParentReference(), source);
}

TEST(ReferenceCopy, KnowsTheTableOfItsSourceWhichDoesNotKnowIt) {
    const auto table = NewTable();
    const auto source = table->GetOrCreateBsReference(L"e1", L"server");
    const auto copy = source->CreateCopy();
    EXPECT_EQ(copy->GetLookupTable(), table);
    EXPECT_EQ(copy->GetRefCount(), 1);
    EXPECT_EQ(table->FindReferenceById(L"e1"), source);
    EXPECT_EQ(table->FindReferenceByBsId(L"server"), source);
}

TEST(ReferenceCopy, IsBoundToTheTableThatMadeItNotToThatOfItsSource) {
    const auto table = NewTable(), other = NewTable();
    const auto source = table->GetOrCreateBsReference(L"e7", L"server");
    source->SetProperty(Prop::kName, Var(L"wheel"));
    source->SetTarget(Var(L"file"));
    const auto copy = other->CreateReferenceFrom(source.Get(), L"e9");
    EXPECT_EQ(copy->GetLookupTable(), other);
    EXPECT_EQ(copy->GetProperty(Prop::kName, 0), Var(L"wheel"));
    EXPECT_EQ(copy->GetTarget(), Var(L"file"));
    EXPECT_EQ(copy->GetProperty(Prop::kLocalId, 0), Var(L"e9"));
}

TEST(ReferenceOrigin, IsTheServerIdOfTheSource) {
    const auto source = WithOrigin(Var(L"older"));
    source->SetProperty(Prop::kBsId, Var(L"server"));
    EXPECT_EQ(source->CreateCopy()->GetProperty(Prop::kOrigin, 0), Var(L"server"));
}

TEST(ReferenceOrigin, IsTheServerIdOfTheReferenceThatTheSourceCameFrom) {
    const auto oldest = NewReference();
    oldest->SetProperty(Prop::kBsId, Var(L"oldest"));
    EXPECT_EQ(WithOrigin(Var(oldest))->CreateCopy()->GetProperty(Prop::kOrigin, 0), Var(L"oldest"));
}

TEST(ReferenceOrigin, IsTheTextThatTheSourceHas) {
    EXPECT_EQ(WithOrigin(Var(L"text"))->CreateCopy()->GetProperty(Prop::kOrigin, 0), Var(L"text"));
}

TEST(ReferenceOrigin, TakesAServerIdThatIsFalseForNone) {
    const auto source = WithOrigin(Var(L"text"));
    source->SetProperty(Prop::kBsId, Var(L"0"));
    EXPECT_EQ(source->CreateCopy()->GetProperty(Prop::kOrigin, 0), Var(L"text"));
}

TEST(ReferenceOrigin, IsMissingWhereNothingTellsIt) {
    const auto withoutId = NewReference(), falseId = NewReference();
    falseId->SetProperty(Prop::kBsId, Var(L"0"));
    for (const Var& origin :
         {Var(), Var(7), Var(true), Var(L""), Var(withoutId), Var(falseId), Var(NewInstance())}) {
        const auto copy = WithOrigin(origin)->CreateCopy();
        EXPECT_FALSE(SavesProperty(*copy, Prop::kOrigin)) << int(origin.GetTag());
    }
}

TEST(ReferenceOrigin, DoesNotClimbBeyondTheReferenceThatTheSourceCameFrom) {
    const auto oldest = NewReference();
    oldest->SetProperty(Prop::kBsId, Var(L"oldest"));
    const auto source = WithOrigin(Var(WithOrigin(Var(oldest))));
    EXPECT_FALSE(SavesProperty(*source->CreateCopy(), Prop::kOrigin));
}

}  // namespace
}  // namespace qn::test

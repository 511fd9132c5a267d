#include "construction/property_copy.h"

#include "tests/construction/construction_support.h"

namespace qn::test {
namespace {

using namespace qn::graph;

/// One instance of one definition, a selector on it, and a position that shows it.
struct Occurrence {
    Occurrence() {
        instance = LooseInstance(reference.Get());
        target->instance = instance;
        selector.AppendPathElement(instance.Get());
    }
    Counted<ReferenceImpl> reference = Make<ReferenceImpl>();
    Counted<InstanceImpl> instance;
    Counted<FakeTraverser> target = Make<FakeTraverser>();
    Selector selector;
};

TEST(CopyProperties, TakesInheritedValuesFromAPath) {
    Occurrence occurrence;
    occurrence.reference->SetProperty(kName, Var(L"wheel"));
    CopyProperties(occurrence.selector, *occurrence.target, CopySource::kPath, false);
    EXPECT_EQ(Utf8(occurrence.target->Written(kName)), "wheel");
}

TEST(CopyProperties, TakesOwnValuesOnlyFromAStoredSelector) {
    Occurrence occurrence;
    occurrence.reference->SetProperty(kName, Var(L"wheel"));
    occurrence.selector.SetProperty(Prop::kText, Var(L"mine"));
    CopyProperties(occurrence.selector, *occurrence.target, CopySource::kSelector, false);
    EXPECT_FALSE(occurrence.target->Wrote(kName));
    EXPECT_EQ(Utf8(occurrence.target->Written(Prop::kText)), "mine");
}

TEST(CopyProperties, WritesNoEmptyValues) {
    Occurrence occurrence;
    CopyProperties(occurrence.selector, *occurrence.target, CopySource::kPath, false);
    EXPECT_TRUE(occurrence.target->writes.empty());
}

TEST(CopyProperties, WritesByRisingNumber) {
    Occurrence occurrence;
    occurrence.instance->SetProperty(Prop::kText, Var(L"text"));
    occurrence.instance->SetProperty(kName, Var(L"name"));
    CopyProperties(occurrence.selector, *occurrence.target, CopySource::kPath, false);
    ASSERT_EQ(occurrence.target->writes.size(), 2u);
    EXPECT_EQ(occurrence.target->writes[0].first, Key(kName));
    EXPECT_EQ(occurrence.target->writes[1].first, Key(Prop::kText));
}

constexpr PropEnum kSelectorOnly[] = {Prop::kBsId, Prop::kAttachedIdentifier, Prop::kPrimaryIdentifier};

TEST(CopyProperties, NeverTakesServerIdAndIdentifiersFromAnInstance) {
    Occurrence occurrence;
    for (const PropEnum id : kSelectorOnly) {
        occurrence.instance->SetProperty(id, Var(L"id"));
        occurrence.reference->SetProperty(id, Var(L"id"));
    }
    CopyProperties(occurrence.selector, *occurrence.target, CopySource::kPath, true);
    EXPECT_TRUE(occurrence.target->writes.empty());
}

TEST(CopyProperties, TakesServerIdAndIdentifiersFromAStoredSelector) {
    Occurrence occurrence;
    for (const PropEnum id : kSelectorOnly)
        occurrence.selector.SetProperty(id, Var(L"id"));
    CopyProperties(occurrence.selector, *occurrence.target, CopySource::kSelector, false);
    for (const PropEnum id : kSelectorOnly)
        EXPECT_TRUE(occurrence.target->Wrote(id)) << Key(id);
}

TEST(CopyProperties, TakesNoMetadataFromAPath) {
    Occurrence occurrence;
    occurrence.instance->SetProperty(kMetadata, MapOf(L"Mass", Var(7)));
    CopyProperties(occurrence.selector, *occurrence.target, CopySource::kPath, false);
    EXPECT_FALSE(occurrence.target->Wrote(kMetadata));
}

TEST(CopyProperties, TakesMetadataFromAPathWhenAskedTo) {
    Occurrence occurrence;
    occurrence.instance->SetProperty(kMetadata, MapOf(L"Mass", Var(7)));
    CopyProperties(occurrence.selector, *occurrence.target, CopySource::kPath, true);
    EXPECT_TRUE(occurrence.target->Wrote(kMetadata));
}

TEST(CopyProperties, TakesMetadataFromAStoredSelector) {
    Occurrence occurrence;
    occurrence.selector.SetProperty(kMetadata, MapOf(L"Mass", Var(7)));
    CopyProperties(occurrence.selector, *occurrence.target, CopySource::kSelector, false);
    EXPECT_TRUE(occurrence.target->Wrote(kMetadata));
}

/// Moves by 1 and turns by a quarter, so that the order of a product shows.
Var QuarterTurn() {
    Matrix4<double> matrix;
    matrix.m[0][0] = 0, matrix.m[0][1] = 1, matrix.m[1][0] = -1, matrix.m[1][1] = 0, matrix.m[3][0] = 1;
    return matrix;
}

Var Product(const Var& first, const Var& second) {
    Matrix4<double> a, b, product;
    first.copy_to(a), second.copy_to(b);
    product.SetMul(a, b);
    return product;
}

TEST(CopyProperties, AppliesTheDefinitionsTransformBeforeThatOfTheSelector) {
    Occurrence occurrence;
    occurrence.reference->SetProperty(kLocalMatrix, QuarterTurn());
    occurrence.selector.SetProperty(kLocalMatrix, Shift(5));
    CopyProperties(occurrence.selector, *occurrence.target, CopySource::kSelector, false);
    EXPECT_EQ(occurrence.target->Written(kLocalMatrix), Product(QuarterTurn(), Shift(5)));
    EXPECT_FALSE(occurrence.target->Written(kLocalMatrix) == Product(Shift(5), QuarterTurn()));
}

TEST(CopyProperties, AppliesTheDefinitionsTransformBeforeThatOfTheInstance) {
    Occurrence occurrence;
    occurrence.reference->SetProperty(kLocalMatrix, QuarterTurn());
    occurrence.instance->SetProperty(kLocalMatrix, Shift(5));
    CopyProperties(occurrence.selector, *occurrence.target, CopySource::kPath, false);
    EXPECT_EQ(occurrence.target->Written(kLocalMatrix), Product(QuarterTurn(), Shift(5)));
}

TEST(CopyProperties, WritesTheDefinitionsTransformWhereItStandsAlone) {
    Occurrence occurrence;
    occurrence.reference->SetProperty(kLocalMatrix, Shift(3));
    CopyProperties(occurrence.selector, *occurrence.target, CopySource::kPath, false);
    EXPECT_EQ(ShiftOf(occurrence.target->Written(kLocalMatrix)), 3);
}

TEST(CopyProperties, WritesTheOccurrencesTransformWhereItStandsAlone) {
    Occurrence occurrence;
    occurrence.instance->SetProperty(kLocalMatrix, Shift(4));
    CopyProperties(occurrence.selector, *occurrence.target, CopySource::kPath, false);
    EXPECT_EQ(ShiftOf(occurrence.target->Written(kLocalMatrix)), 4);
}

TEST(CopyProperties, ReadsTheDefinitionsTransformFromTheTargetsInstance) {
    Occurrence occurrence;
    const auto other = Make<ReferenceImpl>();
    other->SetProperty(kLocalMatrix, Shift(10));
    occurrence.target->instance = LooseInstance(other.Get());
    occurrence.selector.SetProperty(kLocalMatrix, Shift(1));
    CopyProperties(occurrence.selector, *occurrence.target, CopySource::kSelector, false);
    EXPECT_EQ(ShiftOf(occurrence.target->Written(kLocalMatrix)), 11);
}

TEST(CopyProperties, WritesTheValueAsItIsToATargetWithoutInstance) {
    Occurrence occurrence;
    occurrence.target->instance = {};
    occurrence.selector.SetProperty(kLocalMatrix, Shift(1));
    CopyProperties(occurrence.selector, *occurrence.target, CopySource::kSelector, false);
    EXPECT_EQ(ShiftOf(occurrence.target->Written(kLocalMatrix)), 1);
}

}  // namespace
}  // namespace qn::test

#include "tests/behaviour/element_support.h"
#include "tests/behaviour/table_scene.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

/// An element with the ids that are set.
template <class Element>
Counted<Element> WithIds(Counted<Element> element, const Var& id, const Var& bsId) {
    if (id.IsSet()) element->SetProperty(Prop::kLocalId, id);
    if (bsId.IsSet()) element->SetParamVar(Param::kBsId, bsId);
    return element;
}

/// What one registration made of an element.
struct Traces {
    bool inPool, byId, byBsId;
    friend bool operator==(const Traces&, const Traces&) = default;
    friend void PrintTo(const Traces& t, std::ostream* out) {
        *out << "pool " << t.inPool << ", id " << t.byId << ", server id " << t.byBsId;
    }
};

struct Case {
    const char* what;
    Var id, bsId;
    Traces withBsId, plain;
};

const Var kNone, kEmptyText{L""};

const Case kInstances[] = {
    {"no ids", kNone, kNone, {false, false, false}, {true, false, false}},
    {"an id", Var(L"a"), kNone, {false, true, false}, {true, true, false}},
    {"a server id", kNone, Var(L"b"), {true, false, true}, {true, false, false}},
    {"both", Var(L"a"), Var(L"b"), {true, true, true}, {true, true, false}},
    {"empty texts", kEmptyText, kEmptyText, {true, true, true}, {true, false, false}},
    {"numbers", Var(1), Var(2), {true, true, true}, {true, true, false}},
};

const Case kReferences[] = {
    {"no ids", kNone, kNone, {false, false, false}, {false, false, false}},
    {"an id", Var(L"a"), kNone, {false, true, false}, {true, true, false}},
    {"a server id", kNone, Var(L"b"), {true, false, true}, {false, false, false}},
    {"both", Var(L"a"), Var(L"b"), {true, true, true}, {true, true, false}},
    {"empty texts", kEmptyText, kEmptyText, {false, false, false}, {true, true, false}},
    {"numbers", Var(1), Var(2), {true, true, true}, {true, true, false}},
};

template <class Index, class Element>
bool Has(const Index& index, const Var& key, const Counted<Element>& element) {
    const auto found = index.find(key.ToText());
    return found != index.end() && found->second == element;
}

Traces TracesOf(const TableScene& s, const Case& row, const Counted<Instance>& element) {
    const auto& fields = s.Fields();
    return {fields.instances.count(element) != 0, Has(fields.instancesById, row.id, element),
            Has(fields.instancesByBsId, row.bsId, element)};
}

Traces TracesOf(const TableScene& s, const Case& row, const Counted<Reference>& element) {
    const auto& fields = s.Fields();
    return {fields.references.count(element) != 0, Has(fields.referencesById, row.id, element),
            Has(fields.referencesByBsId, row.bsId, element)};
}

TEST(LookupTableRegistration, ByServerIdEntersAnInstanceOfAnySetServerId) {
    for (const Case& row : kInstances) {
        const TableScene s;
        const auto element = WithIds(NewInstance(), row.id, row.bsId);
        s.table->RegisterInstanceWithBsId(element.Get());
        EXPECT_EQ(TracesOf(s, row, element), row.withBsId) << row.what;
    }
}

TEST(LookupTableRegistration, EntersAnInstanceInTheSetInEveryCase) {
    for (const Case& row : kInstances) {
        const TableScene s;
        const auto element = WithIds(NewInstance(), row.id, row.bsId);
        s.table->RegisterInstance(element.Get());
        EXPECT_EQ(TracesOf(s, row, element), row.plain) << row.what;
    }
}

TEST(LookupTableRegistration, ByServerIdEntersAReferenceOfTextsThatAreNotEmpty) {
    for (const Case& row : kReferences) {
        const TableScene s;
        const auto element = WithIds(NewReference(), row.id, row.bsId);
        s.table->RegisterReferenceWithBsId(element.Get());
        EXPECT_EQ(TracesOf(s, row, element), row.withBsId) << row.what;
    }
}

TEST(LookupTableRegistration, EntersAReferenceOfAnySetId) {
    for (const Case& row : kReferences) {
        const TableScene s;
        const auto element = WithIds(NewReference(), row.id, row.bsId);
        s.table->RegisterReference(element.Get());
        EXPECT_EQ(TracesOf(s, row, element), row.plain) << row.what;
    }
}

TEST(LookupTableRegistration, LeavesNoOtherEntries) {
    const TableScene s;
    const auto instance = NewInstance();
    const auto reference = NewReference();
    s.table->RegisterInstance(instance.Get());
    s.table->RegisterInstanceWithBsId(instance.Get());
    s.table->RegisterReference(reference.Get());
    s.table->RegisterReferenceWithBsId(reference.Get());
    EXPECT_EQ(s.Fields().instances.size(), 1u);
    EXPECT_TRUE(s.Fields().references.empty());
    EXPECT_TRUE(s.Fields().instancesById.empty() && s.Fields().instancesByBsId.empty());
    EXPECT_TRUE(s.Fields().referencesById.empty() && s.Fields().referencesByBsId.empty());
}

TEST(LookupTableRegistration, IgnoresNull) {
    const TableScene s;
    s.table->RegisterInstance(nullptr);
    s.table->RegisterInstanceWithBsId(nullptr);
    s.table->RegisterReference(nullptr);
    s.table->RegisterReferenceWithBsId(nullptr);
    EXPECT_TRUE(s.Fields().instances.empty() && s.Fields().references.empty());
    EXPECT_TRUE(s.Fields().instancesById.empty() && s.Fields().instancesByBsId.empty());
}

TEST(LookupTableRegistration, OverwritesAKnownIdAndKeepsTheFormerInTheSet) {
    const TableScene s;
    const auto first = WithIds(NewInstance(), Var(L"a"), Var(L"b"));
    const auto second = WithIds(NewInstance(), Var(L"a"), Var(L"b"));
    s.table->RegisterInstanceWithBsId(first.Get());
    s.table->RegisterInstanceWithBsId(second.Get());
    EXPECT_EQ(s.table->FindInstanceById(L"a").Get(), second.Get());
    EXPECT_EQ(s.table->FindInstanceByBsId(L"b").Get(), second.Get());
    EXPECT_TRUE(s.Fields().instances.count(first));

    const auto third = WithIds(NewReference(), Var(L"a"), Var(L"b"));
    const auto fourth = WithIds(NewReference(), Var(L"a"), Var(L"b"));
    s.table->RegisterReferenceWithBsId(third.Get());
    s.table->RegisterReferenceWithBsId(fourth.Get());
    EXPECT_EQ(s.table->FindReferenceById(L"a").Get(), fourth.Get());
    EXPECT_EQ(s.table->FindReferenceByBsId(L"b").Get(), fourth.Get());
    EXPECT_TRUE(s.Fields().references.count(third));
}

TEST(LookupTableRegistration, OfAnInstanceWithoutIdMakesItAPathStartThatNoIdFinds) {
    const auto table = NewTable();
    const auto instance = NewInstance();
    table->RegisterInstance(instance.Get());
    EXPECT_TRUE(table->IsSelectorPathValid(PathOf({instance.Get()})));
    EXPECT_FALSE(table->FindInstanceById(L"n1"));
}

TEST(LookupTableRegistration, CountsWhatItEnters) {
    auto table = NewTable();
    auto instance = WithIds(NewInstance(), Var(L"a"), Var(L"b"));
    table->RegisterInstanceWithBsId(instance.Get());
    EXPECT_GT(instance->GetRefCount(), 1);
    table.Reset();
    EXPECT_EQ(instance->GetRefCount(), 1);
}

}  // namespace
}  // namespace qn::test

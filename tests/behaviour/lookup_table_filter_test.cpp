#include "graph/node_traverser.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/table_scene.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

Var KeysOf(std::initializer_list<const wchar_t*> keys) {
    Var map;
    map.InitMap();
    for (const wchar_t* key : keys)
        map.At(key) = Var(true);
    return map;
}

/// A table that has read a filter of paths and ids.
struct Filtered : TableScene {
    void Read(const Var& filter) const {
        context->SetParamVar(Param::kIdFilter, filter);
        table->ReadIdFilter();
    }
    void Read(std::initializer_list<const wchar_t*> paths, std::initializer_list<const wchar_t*> ids) const {
        Read(ArrayOf({KeysOf(paths), KeysOf(ids)}));
    }
    std::vector<std::wstring> Ids() const {
        std::vector<std::wstring> ids;
        for (const String& id : Fields().allowedIds)
            ids.emplace_back(id.c_str());
        return ids;
    }
};

using Texts = std::vector<std::wstring>;

TEST(LookupTableFilter, AllowsEveryPathAndElementWithoutFilter) {
    const auto table = NewTable();
    EXPECT_TRUE(table->IsPathAllowed(L"x/y"));
    EXPECT_TRUE(table->IsPathAllowed(String()));
    EXPECT_TRUE(table->IsElementAllowed(nullptr));
    EXPECT_TRUE(table->IsElementAllowed(NewInstance().Get()));
}

TEST(LookupTableFilter, AllowsNoUnlistedIdEvenWithoutFilter) {
    EXPECT_FALSE(NewTable()->IsIdAllowed(L"a"));
}

TEST(LookupTableFilter, AllowsAListedIdEvenAfterTheFilterWentAway) {
    const Filtered f;
    f.Read({}, {L"a"});
    f.Fields().filterActive = false;
    EXPECT_TRUE(f.table->IsIdAllowed(L"a"));
    EXPECT_FALSE(f.table->IsIdAllowed(L"b"));
}

TEST(LookupTableFilter, TakesTheLastPieceOfAnId) {
    const Filtered f;
    f.Read({}, {L"b"});
    const struct {
        const wchar_t* id;
        bool allowed;
    } rows[] = {{L"b", true},    {L"a|b", true},  {L"a||b", true}, {L"a|b|", true}, {L"|b", true},
                {L"b|a", false}, {L"a/b", false}, {L"B", false},   {L"", false},    {L"|", false}};
    for (const auto& [id, allowed] : rows)
        EXPECT_EQ(f.table->IsIdAllowed(id), allowed) << String(id).ToUtf8();
}

TEST(LookupTableFilter, KeepsTheLastPieceOfTheLastStepOfAKey) {
    const struct {
        const wchar_t* key;
        Texts ids;
    } rows[] = {{L"b", {L"b"}},    {L"x/y/a|b", {L"b"}}, {L"x/", {L"x"}},    {L"a|b/c", {L"c"}},
                {L"x//y", {L"y"}}, {L"x/a||b|", {L"b"}}, {L"x/|", {}},       {L"/", {}},
                {L"", {}},         {L"|", {}},           {L"x/y|z/", {L"z"}}};
    for (const auto& [key, ids] : rows) {
        const Filtered f;
        f.Read({}, {key});
        EXPECT_EQ(f.Ids(), ids) << String(key).ToUtf8();
        EXPECT_TRUE(f.Fields().filterActive);
    }
}

TEST(LookupTableFilter, KeepsPathsWhole) {
    const Filtered f;
    f.Read({L"x/y|z/", L""}, {});
    EXPECT_TRUE(f.table->IsPathAllowed(L"x/y|z/"));
    EXPECT_TRUE(f.table->IsPathAllowed(String()));
    EXPECT_FALSE(f.table->IsPathAllowed(L"x/y|z"));
    EXPECT_FALSE(f.table->IsPathAllowed(L"z"));
    EXPECT_EQ(f.Ids(), Texts{});
}

TEST(LookupTableFilter, AddsPathsUpAndStartsIdsAnew) {
    const Filtered f;
    f.Read({L"first"}, {L"a"});
    f.Read({L"second"}, {L"b"});
    EXPECT_TRUE(f.table->IsPathAllowed(L"first"));
    EXPECT_TRUE(f.table->IsPathAllowed(L"second"));
    EXPECT_EQ(f.Ids(), Texts{L"b"});
}

TEST(LookupTableFilter, ReadsAMapOfTwoMapsToo) {
    const Filtered f;
    f.Read(MapOf({{Var(1), KeysOf({L"a"})}, {Var(0), KeysOf({L"x"})}}));
    EXPECT_EQ(f.Ids(), Texts{L"a"});
    EXPECT_TRUE(f.table->IsPathAllowed(L"x"));
    EXPECT_FALSE(f.table->IsPathAllowed(L"a"));
}

TEST(LookupTableFilter, ReadsKeysThatAreNoTexts) {
    const Filtered f;
    f.Read(ArrayOf({MapOf({{Var(5), Var()}}), MapOf({{Var(7), Var()}})}));
    EXPECT_EQ(f.Ids(), Texts{L"7"});
    EXPECT_TRUE(f.table->IsPathAllowed(L"5"));
}

TEST(LookupTableFilter, AllowsNothingWhereTheValueIsNoContainer) {
    const Filtered f;
    f.Read(Var(L"all"));
    EXPECT_TRUE(f.Fields().filterActive);
    EXPECT_FALSE(f.table->IsPathAllowed(L"all"));
    EXPECT_EQ(f.Ids(), Texts{});
}

TEST(LookupTableFilter, NeedsNoSecondMap) {
    const Filtered f;
    f.Read(ArrayOf({KeysOf({L"x"})}));
    EXPECT_TRUE(f.table->IsPathAllowed(L"x"));
    EXPECT_EQ(f.Ids(), Texts{});
}

TEST(LookupTableFilter, EndsWithTheParameterButRemembersPaths) {
    const Filtered f;
    f.Read({L"x"}, {L"a"});
    f.Read(Var());
    EXPECT_FALSE(f.Fields().filterActive);
    EXPECT_EQ(f.Ids(), Texts{});
    EXPECT_TRUE(f.table->IsPathAllowed(L"anything"));
    f.Read({L"y"}, {});
    EXPECT_TRUE(f.table->IsPathAllowed(L"x"));
    EXPECT_FALSE(f.table->IsPathAllowed(L"anything"));
}

TEST(LookupTableFilter, EndsWithTheContext) {
    Filtered f;
    f.Read({L"x"}, {L"a"});
    f.context.Reset();
    f.table->ReadIdFilter();
    EXPECT_FALSE(f.Fields().filterActive);
    EXPECT_EQ(f.Ids(), Texts{});
    EXPECT_EQ(f.Fields().allowedPaths.size(), 1u);
}

TEST(LookupTableFilter, LeavesTheParameterAsItWas) {
    const Filtered f;
    const Var filter = ArrayOf({KeysOf({L"x"}), KeysOf({L"a"})});
    f.Read(filter);
    EXPECT_EQ(f.context->GetParamVar(Param::kIdFilter), filter);
    EXPECT_EQ(filter.size(), 2);
}

TEST(LookupTableFilter, JudgesAnElementByItsServerId) {
    const Filtered f;
    f.Read({}, {L"b"});
    const auto instance = NewInstance();
    const auto reference = NewReference();
    const auto selector = CreateAs<PersistentSelector>(ClassKey::kPersistentSelector);
    EXPECT_FALSE(f.table->IsElementAllowed(nullptr));
    for (HierarchyElement* element :
         {static_cast<HierarchyElement*>(instance.Get()), static_cast<HierarchyElement*>(reference.Get()),
          static_cast<HierarchyElement*>(selector.Get())}) {
        EXPECT_FALSE(f.table->IsElementAllowed(element));
        element->SetProperty(Prop::kBsId, Var(L"a|b"));
        EXPECT_TRUE(f.table->IsElementAllowed(element));
        element->SetProperty(Prop::kBsId, Var(L"b|a"));
        EXPECT_FALSE(f.table->IsElementAllowed(element));
    }
}

TEST(LookupTableFilter, JudgesAServerIdThatIsANumberByItsText) {
    const Filtered f;
    f.Read({}, {L"12"});
    const auto instance = NewInstance();
    instance->SetProperty(Prop::kBsId, Var(12));
    EXPECT_TRUE(f.table->IsElementAllowed(instance.Get()));
}

TEST(LookupTableFilter, DoesNotJudgeByTheServerIdOfTheReference) {
    const Filtered f;
    f.Read({}, {L"b"});
    const auto reference = NewReference();
    reference->SetProperty(Prop::kBsId, Var(L"b"));
    EXPECT_FALSE(f.table->IsElementAllowed(reference->CreateInstance().Get()));
}

TEST(LookupTableFilter, JudgesATraverserByTheServerIdOfItsNode) {
    const Filtered f;
    f.Read({}, {L"b"});
    k3::Node* node = f.Node(L"node");
    auto& fields = f.Fields();
    const auto at =
        Make<NodeTraverser>(f.table.Get(), node, &fields.nodeToInstance, &fields.instanceToNodes, false);
    EXPECT_FALSE(f.table->IsElementAllowed(at.Get()));
    node->SetParamVar(Param::kBsId, Var(L"a|b"));
    EXPECT_TRUE(f.table->IsElementAllowed(at.Get()));
}

}  // namespace
}  // namespace qn::test

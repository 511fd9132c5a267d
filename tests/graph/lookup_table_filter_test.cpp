#include "tests/graph/table_fixture.h"

#include <gmock/gmock.h>

namespace qn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class IdFilter : public TableFixture {
protected:
    IdFilter() { table->SetSceneAndContext(nullptr, context.Get()); }

    static Var MapOf(std::initializer_list<const wchar_t*> keys) {
        Var map;
        map.InitMap();
        for (const wchar_t* key : keys)
            map.At(key) = Var(1);
        return map;
    }
    void Read(std::initializer_list<const wchar_t*> paths, std::initializer_list<const wchar_t*> ids) {
        Var filter;
        filter.At(0) = MapOf(paths);
        filter.At(1) = MapOf(ids);
        context->SetParamVar(Param::kIdFilter, filter);
        table->ReadIdFilter();
    }
    Counted<RecordingContext> context = MakeContext();
};

TEST_F(IdFilter, IsOffWithoutParameter) {
    table->filterActive = true;
    table->allowedIds.insert(L"a");
    table->ReadIdFilter();
    EXPECT_FALSE(table->filterActive);
    EXPECT_THAT(table->allowedIds, IsEmpty());
}

TEST_F(IdFilter, IsOffWithoutLivingContext) {
    Read({}, {L"a"});
    context.Reset();
    table->ReadIdFilter();
    EXPECT_FALSE(table->filterActive);
}

TEST_F(IdFilter, TakesTheLastPieceOfTheLastPieceAsId) {
    Read({}, {L"x/y/a|b"});
    EXPECT_TRUE(table->filterActive);
    EXPECT_THAT(table->allowedIds, ElementsAre(String(L"b")));
}

TEST_F(IdFilter, DropsEmptyPieces) {
    Read({}, {L"x/", L"//", L"c||", L"d|/"});
    EXPECT_THAT(table->allowedIds, ElementsAre(String(L"c"), String(L"d"), String(L"x")));
}

TEST_F(IdFilter, TakesPathsWhole) {
    Read({L"x/y|z"}, {});
    EXPECT_THAT(table->allowedPaths, ElementsAre(String(L"x/y|z")));
}

TEST_F(IdFilter, ReadTwiceKeepsThePathsOfBothAndTheIdsOfTheLast) {
    Read({L"p"}, {L"a"});
    Read({L"q"}, {L"b"});
    EXPECT_THAT(table->allowedPaths, ElementsAre(String(L"p"), String(L"q")));
    EXPECT_THAT(table->allowedIds, ElementsAre(String(L"b")));
}

TEST_F(IdFilter, MayBeAnArrayOfTwoMaps) {
    Var filter(VarArray::Create(2));
    filter.At(0) = MapOf({L"p"});
    filter.At(1) = MapOf({L"a"});
    context->SetParamVar(Param::kIdFilter, filter);
    table->ReadIdFilter();
    EXPECT_THAT(table->allowedPaths, ElementsAre(String(L"p")));
    EXPECT_THAT(table->allowedIds, ElementsAre(String(L"a")));
}

TEST_F(IdFilter, IsOnAndEmptyForAValueThatIsNoContainer) {
    context->SetParamVar(Param::kIdFilter, Var(7));
    table->ReadIdFilter();
    EXPECT_TRUE(table->filterActive);
    EXPECT_THAT(table->allowedIds, IsEmpty());
}

TEST_F(IdFilter, TakesNumbersAsKeysByTheirText) {
    Var filter;
    filter.At(1).At(42) = Var(1);
    context->SetParamVar(Param::kIdFilter, filter);
    table->ReadIdFilter();
    EXPECT_THAT(table->allowedIds, ElementsAre(String(L"42")));
}

TEST_F(IdFilter, AllowsEveryPathWhileItIsOff) {
    EXPECT_TRUE(table->IsPathAllowed(L"anything"));
    Read({L"p"}, {});
    EXPECT_TRUE(table->IsPathAllowed(L"p"));
    EXPECT_FALSE(table->IsPathAllowed(L"anything"));
}

TEST_F(IdFilter, TestsTheLastPieceOfAnIdEvenWhileItIsOff) {
    table->allowedIds.insert(L"b");
    EXPECT_FALSE(table->filterActive);
    EXPECT_TRUE(table->IsIdAllowed(L"a|b"));
    EXPECT_TRUE(table->IsIdAllowed(L"b|"));
    EXPECT_FALSE(table->IsIdAllowed(L"b|a"));
    EXPECT_FALSE(table->IsIdAllowed(String()));
    EXPECT_FALSE(table->IsIdAllowed(L"||"));
}

TEST_F(IdFilter, AllowsEvenANullElementWhileItIsOff) {
    EXPECT_TRUE(table->IsElementAllowed(nullptr));
}

TEST_F(IdFilter, AllowsElementsByTheirServerId) {
    Read({}, {L"b"});
    const auto element = Make<InstanceImpl>();
    EXPECT_FALSE(table->IsElementAllowed(nullptr));
    EXPECT_FALSE(table->IsElementAllowed(element.Get()));
    element->SetProperty(Prop::kBsId, Var(L"a|b"));
    EXPECT_TRUE(table->IsElementAllowed(element.Get()));
    element->SetProperty(Prop::kBsId, Var(L"c"));
    EXPECT_FALSE(table->IsElementAllowed(element.Get()));
}

}  // namespace
}  // namespace qn::test

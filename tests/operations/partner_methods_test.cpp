#include "tests/operations/operations_support.h"

#include <gmock/gmock.h>

namespace qn::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CheckingMethods : public OperationTest {};

TEST_F(CheckingMethods, ThatValidateReportWhatTheyFound) {
    for (const int method : {11, 16, 18}) {
        ThePartners().answer = true;
        EXPECT_EQ(Run(method), 1) << method;
        ThePartners().answer = false;
        EXPECT_EQ(Run(method), 0) << method;
    }
}

TEST_F(CheckingMethods, ThatRepairReportOnlyThatTheyRan) {
    for (const int method : {12, 17}) {
        ThePartners().answer = true;
        EXPECT_EQ(Run(method), 1) << method;
        ThePartners().answer = false;
        EXPECT_EQ(Run(method), 1) << method;
    }
}

TEST_F(CheckingMethods, AnswerZeroWhereTheHostCannotMakeTheirClass) {
    ThePartners().canBeMade = false;
    for (const int method : {11, 12, 16, 17, 18})
        EXPECT_EQ(Run(method), 0) << method;
    EXPECT_THAT(ThePartners().calls, IsEmpty());
}

TEST_F(CheckingMethods, CallTheOperationOfTheirNumberWithSceneAndContext) {
    for (const int method : {11, 12, 16, 17, 18})
        Run(method, {}, context.Get());
    EXPECT_THAT(
        ThePartners().calls,
        ElementsAre("ValidateHierarchy scene with context", "RepairTopLevelNodes scene with context",
                    "ValidateLayers scene with context", "RepairLayersAndViewports scene with context",
                    "ContainsCollaborationObjects scene"));
}

TEST_F(CheckingMethods, PassANullContextOn) {
    Run(11);
    EXPECT_THAT(ThePartners().calls, ElementsAre("ValidateHierarchy scene without context"));
}

class Thumbnails : public OperationTest {
protected:
    std::vector<int> Requested(const Arguments& arguments) {
        EXPECT_EQ(Run(10, arguments), 1);
        std::vector<int> kinds;
        for (const auto& call : scene->GetHostCalls())
            kinds.push_back(call.first);
        return kinds;
    }
};

TEST_F(Thumbnails, OfModelStepAndDetailViewsAreDrawnInThisOrder) {
    EXPECT_THAT(Requested({{1, Var(true)}, {2, Var(true)}, {3, Var(true)}}), ElementsAre(1, 2, 3));
}

TEST_F(Thumbnails, AreDrawnOnlyWhereAskedFor) {
    EXPECT_THAT(Requested({{2, Var(true)}}), ElementsAre(2));
}

TEST_F(Thumbnails, OfNoKindAreFineToo) {
    EXPECT_THAT(Requested({}), IsEmpty());
}

class VisualContext : public OperationTest {
protected:
    int RunMerge(Context* with) { return Run(5, {{1, Var("context.qn")}, {2, Var("query.xml")}}, with); }
};

TEST_F(VisualContext, IsMergedUnderTheFilterOfTheQuery) {
    EXPECT_EQ(RunMerge(context.Get()), 1);
    EXPECT_THAT(ThePartners().calls, ElementsAre("ReadFilter query.xml with context",
                                                 "Merge 1 context.qn into scene under filter of query.xml"));
}

TEST_F(VisualContext, PutsTheFilterOfTheContextBack) {
    context->SetParamVar(Param::kIdFilter, Var("before"));
    RunMerge(context.Get());
    EXPECT_EQ(Utf8(context->GetParamVar(Param::kIdFilter)), "before");
}

TEST_F(VisualContext, LeavesNoFilterWhereThereWasNone) {
    RunMerge(context.Get());
    EXPECT_TRUE(context->GetParamVar(Param::kIdFilter).IsEmpty());
}

TEST_F(VisualContext, MergeAnswersOneWhateverTheResolverSays) {
    ThePartners().answer = false;
    EXPECT_EQ(RunMerge(context.Get()), 1);
}

TEST_F(VisualContext, MergesWithoutFilterWhereThereIsNoContext) {
    EXPECT_EQ(RunMerge(nullptr), 1);
    EXPECT_EQ(ThePartners().calls.back(), "Merge 1 context.qn into scene under nothing");
}

TEST_F(VisualContext, MergeAnswersZeroWithoutResolver) {
    ThePartners().canBeMade = false;
    EXPECT_EQ(RunMerge(context.Get()), 0);
}

TEST_F(VisualContext, IsExtractedFromAFileInPlaceOfTheScene) {
    const Arguments files = {{0, Var("source.qn")}, {1, Var("index.db")}, {2, Var("query.xml")}};
    EXPECT_EQ(RunWithoutScene(6, files, context.Get()), 1);
    EXPECT_THAT(ThePartners().calls, ElementsAre("Extract source.qn|index.db|query.xml with context"));
    ThePartners().answer = false;
    EXPECT_EQ(RunWithoutScene(6, files), 0);
    ThePartners().canBeMade = false;
    EXPECT_EQ(RunWithoutScene(6, files), 0);
}

TEST_F(VisualContext, ExtractionReadsMissingNamesAsEmpty) {
    EXPECT_EQ(RunWithoutScene(6), 1);
    EXPECT_THAT(ThePartners().calls, ElementsAre("Extract || without context"));
}

class ShallowExport : public OperationTest {
protected:
    Arguments Texts() const {
        return {{0, Var("a")}, {1, Var("b")}, {2, Var("c")}, {5, Var("f")},
                {6, Var("g")}, {7, Var("h")}, {8, Var("i")}};
    }
    int RunWith(const Var& object, const Var& second) {
        Arguments arguments = Texts();
        arguments.emplace_back(3, object);
        arguments.emplace_back(4, second);
        return RunWithoutScene(9, arguments, context.Get());
    }
};

TEST_F(ShallowExport, PassesItsArgumentsInOrder) {
    EXPECT_EQ(RunWith(Var(scene), Var(VarMap::Create())), 1);
    EXPECT_THAT(ThePartners().calls, ElementsAre("Export|a|b|c|f|g|h|i|object|object with context"));
}

TEST_F(ShallowExport, WithoutObjectMakesNothing) {
    EXPECT_EQ(RunWith(Var(), Var(scene)), 0);
    EXPECT_EQ(ThePartners().made, 0);
    EXPECT_EQ(RunWith(Var(scene), Var()), 1);
    EXPECT_EQ(ThePartners().made, 1);
}

TEST_F(ShallowExport, MayLackTheSecondObject) {
    EXPECT_EQ(RunWith(Var(scene), Var()), 1);
    EXPECT_THAT(ThePartners().calls, ElementsAre("Export|a|b|c|f|g|h|i|object|null with context"));
}

TEST_F(ShallowExport, AnswersWhatTheExporterSays) {
    ThePartners().answer = false;
    EXPECT_EQ(RunWith(Var(scene), Var()), 0);
    ThePartners().canBeMade = false;
    EXPECT_EQ(RunWith(Var(scene), Var()), 0);
}

}  // namespace
}  // namespace qn::test

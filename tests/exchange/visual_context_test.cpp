#include "exchange/visual_context_resolver.h"

#include "engine/scene/tree_walk.h"
#include "exchange/context_query.h"
#include "tests/exchange/exchange_support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qn::test {
namespace {

using exchange::ContextResolver;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

class VisualContext : public testing::Test {
protected:
    exchange::ContextQuery Extracted(const String& source, const String& index = String()) {
        EXPECT_TRUE(resolver_->Extract(source, index, query_, context_.Get())) << Cause();
        exchange::ContextQuery query;
        exchange::ReadProblem problem;
        EXPECT_TRUE(exchange::ParseContextQuery(ReadBytes(query_.ToUtf8()), query, problem));
        return query;
    }
    /// Merges a file into a new scene under a filter.
    Counted<k3::Scene> Merged(const String& file, const exchange::ContextQuery& query) {
        const auto scene = Make<k3::Scene>();
        context_->SetParamVar(Param::kIdFilter, exchange::FilterOf(query));
        EXPECT_TRUE(resolver_->Merge(ListOf({file}), scene.Get(), context_.Get())) << Cause();
        return scene;
    }
    static Var ListOf(std::initializer_list<String> files) {
        Var list;
        list.InitArray(0);
        for (const String& file : files)
            list.At(list.size()) = Var(file);
        return list;
    }
    /// Names of the nodes that are not hidden, in tree order.
    static std::vector<std::string> Shown(k3::Scene& scene) {
        std::vector<std::string> names;
        for (k3::Node* node = scene.GetFirstChild(); node; node = k3::NextInSubtree(node, &scene))
            if (!(node->GetFlags() & NodeFlag::kHidden)) names.push_back(node->GetName().ToUtf8());
        return names;
    }
    std::string Cause() const { return context_->GetFailureText().ToUtf8(); }

    TempFolder folder_;
    String query_ = folder_.File("query.xml");
    Counted<RecordingContext> context_ = MakeContext();
    Counted<ContextResolver> resolver_ = Make<ContextResolver>();
};

TEST_F(VisualContext, AsksForEveryOccurrenceWithoutAnIndex) {
    const String file = WriteFile(folder_, "car.qn", *SceneOf(Car().Shape()));
    const auto query = Extracted(file);
    EXPECT_THAT(query.paths, SizeIs(10));
    EXPECT_EQ(query.paths.front(), String(L"s:car.1"));
    EXPECT_THAT(query.ids, SizeIs(7)) << "the tyres are one use in the wheel";
    EXPECT_EQ(query.ids.back(), String(L"n:wheel.4"));
}

TEST_F(VisualContext, AsksForOccurrencesThatAreNotGeneratedYet) {
    const String file = WriteCompactFile(folder_, "car.qn", Car().Shape());
    EXPECT_THAT(Extracted(file).ids, Contains(String(L"n:wheel.3")));
}

TEST_F(VisualContext, AsksForIndexEntriesNearTheContent) {
    const String file = WriteFile(folder_, "part.qn", *SceneOf(AssemblyBuilder("part").Shape()));
    const String index = folder_.Write("index.txt",
                                       "assembly-spatial-index 1\n"
                                       "1\t0\t0\t2\t1\t1\tn:touching\ts:touching\n"
                                       "1.5\t0\t0\t2\t1\t1\tn:apart\t\n"
                                       "0\t0\t0\t1\t1\t1\t\ts:inside\n");
    const auto query = Extracted(file, index);
    EXPECT_THAT(query.ids, ElementsAre(String(L"n:touching")));
    EXPECT_THAT(query.paths, ElementsAre(String(L"s:touching"), String(L"s:inside")));
}

TEST_F(VisualContext, LooksAsFarAsTheMarginOfTheIndex) {
    const String file = WriteFile(folder_, "part.qn", *SceneOf(AssemblyBuilder("part").Shape()));
    const String index =
        folder_.Write("index.txt", "assembly-spatial-index 1\nmargin 0.5\n1.5\t0\t0\t2\t1\t1\tn:apart\n");
    EXPECT_THAT(Extracted(file, index).ids, ElementsAre(String(L"n:apart")));
}

TEST_F(VisualContext, LeavesOutWhatTheFileHasItself) {
    const String file = WriteFile(folder_, "part.qn", *SceneOf(AssemblyBuilder("part").Shape()));
    const String index =
        folder_.Write("index.txt", "assembly-spatial-index 1\n0\t0\t0\t1\t1\t1\tn:part.1\ts:part.1\n");
    EXPECT_TRUE(Extracted(file, index).IsEmpty());
}

TEST_F(VisualContext, TellsWhichFileCannotBeRead) {
    const String file = WriteFile(folder_, "part.qn", *SceneOf(AssemblyBuilder("part").Shape()));
    EXPECT_FALSE(resolver_->Extract(folder_.File("no.qn"), String(), query_, context_.Get()));
    EXPECT_THAT(Cause(), HasSubstr("no.qn"));
    context_->Restart();
    EXPECT_FALSE(resolver_->Extract(file, folder_.File("no.txt"), query_, context_.Get()));
    EXPECT_THAT(Cause(), HasSubstr("no.txt"));
    context_->Restart();
    EXPECT_FALSE(resolver_->Extract(file, folder_.Write("bad.txt", "bad"), query_, context_.Get()));
    EXPECT_THAT(Cause(), HasSubstr("bad.txt: line 1"));
    context_->Restart();
    EXPECT_FALSE(resolver_->Extract(file, String(), String(), context_.Get()));
    EXPECT_FALSE(HasFile(query_));
}

TEST_F(VisualContext, ReadsAQueryAsTheFilterOfTheLookUpTable) {
    const String file = folder_.Write("q.xml",
                                      "<VisualContextQuery><Paths><Path value='p'/></Paths>"
                                      "<Ids><Id value='a/b|c'/></Ids></VisualContextQuery>");
    const Var filter = resolver_->ReadFilter(file, context_.Get());
    EXPECT_NE(filter.Lookup(0)->Lookup(L"p"), nullptr);
    EXPECT_NE(filter.Lookup(1)->Lookup(L"a/b|c"), nullptr);
}

TEST_F(VisualContext, ReadsAFilterThatWantsNothingFromAQueryThatCannotBeRead) {
    for (const String& file : {folder_.File("no.xml"), folder_.Write("bad.xml", "<Query/>")}) {
        context_->Restart();
        const Var filter = resolver_->ReadFilter(file, context_.Get());
        ASSERT_TRUE(filter.IsMap()) << "an empty value would be no filter at all";
        EXPECT_EQ(filter.Lookup(0)->size(), 0);
        EXPECT_EQ(filter.Lookup(1)->size(), 0);
        EXPECT_THAT(Cause(), HasSubstr(".xml"));
    }
}

TEST_F(VisualContext, MergesAllOfAFileWithoutFilter) {
    const String file = WriteFile(folder_, "car.qn", *SceneOf(Car().Shape()));
    const auto scene = SceneOf(AssemblyBuilder("bench").Shape());
    EXPECT_TRUE(resolver_->Merge(ListOf({file, file}), scene.Get(), context_.Get()));
    EXPECT_THAT(NamesOf(*scene), SizeIs(21));
    EXPECT_EQ(NamesOf(*scene)[0], "bench");
}

TEST_F(VisualContext, ShowsAnOccurrenceThatAPathNamesWithAllBelowAndTheNodesAbove) {
    const String file = WriteFile(folder_, "car.qn", *SceneOf(Car().Shape()));
    const auto scene = Merged(file, {{L"s:wheel.2"}, {}});
    EXPECT_THAT(Shown(*scene), ElementsAre("car", "wheel", "tyre"));
    EXPECT_EQ(FindNode(*scene, "wheel")->GetFlags() & NodeFlag::kHidden, NodeFlag::kHidden) << "the first";
}

TEST_F(VisualContext, ShowsAnOccurrenceThatAnIdNamesByItsLastPiece) {
    const String file = WriteFile(folder_, "car.qn", *SceneOf(Car().Shape()));
    EXPECT_THAT(Shown(*Merged(file, {{}, {L"n:car.1/x|n:chassis.1"}})), ElementsAre("car", "chassis"));
}

TEST_F(VisualContext, KeepsTheHierarchyOfWhatItHides) {
    const String file = WriteFile(folder_, "car.qn", *SceneOf(Car().Shape()));
    const auto scene = Merged(file, {{L"s:wheel.2"}, {}});
    EXPECT_THAT(NamesOf(*scene), SizeIs(10));
    const String saved = WriteFile(folder_, "part.qn", *scene);
    const auto loaded = Make<k3::Scene>();
    ASSERT_TRUE(loaded->LoadFile(saved.c_str(), MakeContext().Get(), 0, Guid()));
    EXPECT_EQ(Shown(*loaded), Shown(*scene)) << "no repair took place";
}

TEST_F(VisualContext, ShowsAPartOfAFileThatHasNoNodesOfItsOwn) {
    const String file = WriteCompactFile(folder_, "car.qn", Car().Shape());
    const auto scene = Merged(file, {{}, {L"n:wheel.2"}});
    EXPECT_THAT(Shown(*scene), SizeIs(3)) << "file, wheel, tyre";
}

TEST_F(VisualContext, HidesNothingOfAFileThatIsWantedAsAWhole) {
    const String file = WriteCompactFile(folder_, "car.qn", Car().Shape());
    const auto all = Extracted(file);
    EXPECT_THAT(Shown(*Merged(file, all)), SizeIs(10));
}

TEST_F(VisualContext, MergesNoViewOfAFileUnderAFilter) {
    const auto car = SceneOf(Car().Shape());
    k3::Viewport* view = car->CreateViewport(L"front");
    k3::Node* camera = car->CreateEmptyNode(0, 0, 0);
    camera->SetName(L"camera");
    view->SetKind(k3::ViewKind::kModel);
    view->SetViewNode(camera);
    const String file = WriteFile(folder_, "car.qn", *car);
    const auto scene = Merged(file, {{L"s:chassis.1"}, {}});
    EXPECT_EQ(scene->GetAllViewports()->GetCount(), 0);
    EXPECT_EQ(FindNode(*scene, "camera"), nullptr);
}

TEST_F(VisualContext, AddsNothingOfAFileWithoutAnythingWantedAndTellsIt) {
    const String file = WriteFile(folder_, "car.qn", *SceneOf(Car().Shape()));
    const auto scene = Merged(file, {{L"s:nothing"}, {}});
    EXPECT_THAT(NamesOf(*scene), IsEmpty());
    EXPECT_THAT(context_->Texts(), Contains(HasSubstr("car.qn")));
}

TEST_F(VisualContext, LoadsNothingUnderAFilterThatWantsNothing) {
    const auto scene = Make<k3::Scene>();
    context_->SetParamVar(Param::kIdFilter, exchange::FilterOf({}));
    EXPECT_FALSE(resolver_->Merge(ListOf({folder_.File("no.qn")}), scene.Get(), context_.Get()));
    EXPECT_EQ(context_->GetFailure(), LoadFailure::kNone) << "the file is not even looked for";
    EXPECT_THAT(context_->Texts(), SizeIs(1));
}

TEST_F(VisualContext, MergesTheOtherFilesIfOneIsMissing) {
    const String file = WriteFile(folder_, "car.qn", *SceneOf(Car().Shape()));
    const auto scene = Make<k3::Scene>();
    context_->SetParamVar(Param::kIdFilter, exchange::FilterOf({{L"s:chassis.1"}, {}}));
    EXPECT_FALSE(resolver_->Merge(ListOf({folder_.File("no.qn"), file}), scene.Get(), context_.Get()));
    EXPECT_THAT(Shown(*scene), ElementsAre("car", "chassis"));
    EXPECT_THAT(Cause(), HasSubstr("no.qn"));
}

TEST_F(VisualContext, RefusesWhatIsNoListOrNoScene) {
    const auto scene = Make<k3::Scene>();
    EXPECT_FALSE(resolver_->Merge(Var(L"car.qn"), scene.Get(), context_.Get()));
    EXPECT_FALSE(resolver_->Merge(ListOf({}), nullptr, context_.Get()));
}

}  // namespace
}  // namespace qn::test

#include "engine/stream/object_file.h"
#include "engine/stream/scene_file.h"
#include "frame/host/scene.h"
#include "tests/behaviour/element_support.h"
#include "tests/support/recording_context.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

Var NewObject() {
    return Var(Make<k3::Object3D>());
}

Counted<Reference> WithTarget(LookupTable& table, const Var& target) {
    auto reference = NewReferenceIn(table);
    reference->SetTarget(target);
    return reference;
}

TEST(ReferenceTarget, IsGivenAsACopyThatSharesWhatItHolds) {
    const auto reference = NewReference();
    const Var map = MapOf({{Var(1), Var(L"e1")}});
    reference->SetTarget(map);
    EXPECT_EQ(reference->GetTarget().ToMap(), map.ToMap());
    Var taken = reference->GetTarget();
    taken = Var(L"file");
    EXPECT_TRUE(reference->GetTarget().IsMap());
    reference->SetTarget(Var());
    EXPECT_TRUE(reference->GetTarget().IsEmpty());
}

TEST(ReferenceTarget, DecidesAboutLeafAndLinkByItsTag) {
    const struct {
        Var target;
        bool leaf, noLink;
    } kCases[] = {{Var(), true, true},
                  {Var(L"file"), true, false},
                  {Var(L""), true, false},
                  {ArrayOf({}), false, false},
                  {MapOf({}), false, false},
                  {NewObject(), false, true},
                  {Var(Make<k3::Generic>()), false, true},
                  {Var(5), true, true},
                  {Var(false), true, true}};
    for (const auto& [target, leaf, noLink] : kCases) {
        const auto reference = NewReference();
        reference->SetTarget(target);
        EXPECT_EQ(reference->IsLeaf(), leaf) << int(target.GetTag());
        EXPECT_EQ(reference->HasNoTargetLink(), noLink) << int(target.GetTag());
    }
}

TEST(ReferenceTarget, IsNoLeafWithChildren) {
    const auto reference = NewReference();
    reference->SetTarget(Var(L"file"));
    reference->AddChild(NewReference()->CreateInstance().Get());
    EXPECT_FALSE(reference->IsLeaf());
    EXPECT_FALSE(reference->HasNoTargetLink());
    reference->RemoveChildAt(0);
    EXPECT_TRUE(reference->IsLeaf());
}

TEST(ReferenceResolving, GivesItselfWhereTheTargetNamesNothing) {
    for (const Var& target : {Var(), Var(5), NewObject()}) {
        const auto reference = NewReference();
        reference->SetTarget(target);
        const auto found = reference->ResolveTarget(Var(L"any"));
        EXPECT_EQ(found, reference);
        EXPECT_EQ(reference->GetRefCount(), 2) << "counted";
    }
}

TEST(ReferenceResolving, FindsTheReferenceThatTheKeyNames) {
    const auto table = NewTable();
    const auto wheel = table->GetOrCreateReference(L"e50");
    const auto map = WithTarget(*table, MapOf({{Var(L"wheel"), Var(L"e50")}, {Var(4), Var(L"e51")}}));
    EXPECT_EQ(map->ResolveTarget(Var(L"wheel")), wheel);
    const auto made = map->ResolveTarget(Var(4));
    ASSERT_TRUE(made);
    EXPECT_EQ(made, table->FindReferenceById(L"e51"));
    const auto array = WithTarget(*table, IdPath({L"e51", L"e50"}));
    EXPECT_EQ(array->ResolveTarget(Var(1)), wheel);
    EXPECT_EQ(array->ResolveTarget(Var(0)), made);
}

TEST(ReferenceResolving, RemembersItsAnswersForEver) {
    const auto table = NewTable();
    const auto reference = WithTarget(*table, MapOf({{Var(L"wheel"), Var(L"e50")}}));
    const auto first = reference->ResolveTarget(Var(L"wheel"));
    reference->SetTarget(MapOf({{Var(L"wheel"), Var(L"e60")}}));
    EXPECT_EQ(reference->ResolveTarget(Var(L"wheel")), first);
    EXPECT_FALSE(table->FindReferenceById(L"e60"));
    reference->SetTarget(Var(L"wheel"));
    EXPECT_EQ(reference->ResolveTarget(Var()), first) << "a file name is a key like any other";
    reference->ReloadExternalTarget();
    reference->SetTarget(MapOf({}));
    EXPECT_EQ(reference->ResolveTarget(Var(L"wheel")), first);
}

TEST(ReferenceResolving, DoesNotSaveItsAnswers) {
    const auto table = NewTable();
    const auto reference = WithTarget(*table, MapOf({{Var(L"wheel"), Var(L"e50")}}));
    reference->ResolveTarget(Var(L"wheel"));
    EXPECT_EQ(TapeOf(*reference)->OwnIds(), (std::vector<int>{0x1000, 0x1001}));
}

TEST(ReferenceResolving, MakesTheKeyAndAReferenceForAnUnknownOne) {
    const auto table = NewTable();
    const Var map = MapOf({});
    const auto reference = table->GetOrCreateReference(L"root");
    reference->SetTarget(map);
    const auto made = reference->ResolveTarget(Var(L"unknown"));
    ASSERT_TRUE(made);
    EXPECT_NE(made, reference);
    EXPECT_EQ(made->GetProperty(Prop::kLocalId, 0), Var(L"e1"));
    ASSERT_NE(map.Lookup(L"unknown"), nullptr);
    EXPECT_TRUE(map.Lookup(L"unknown")->IsEmpty());
    EXPECT_EQ(reference->ResolveTarget(Var(L"unknown")), made);
}

TEST(ReferenceResolving, GivesNullWithoutATable) {
    const auto reference = NewReference();
    for (const Var& target : {MapOf({{Var(1), Var(L"e1")}}), IdPath({L"e0", L"e1"}), Var(L"file")}) {
        reference->SetTarget(target);
        EXPECT_FALSE(reference->ResolveTarget(Var(1))) << int(target.GetTag());
    }
    const auto table = NewTable();
    reference->RegisterInTable(table.Get());
    reference->SetTarget(MapOf({{Var(1), Var(L"e7")}}));
    EXPECT_TRUE(reference->ResolveTarget(Var(1))) << "null was not remembered";
}

TEST(ReferenceResolving, DoesNotHoldItselfByItsAnswer) {
    auto table = NewTable();
    auto reference = table->GetOrCreateReference(L"self");
    reference->SetTarget(MapOf({{Var(1), Var(L"self")}}));
    EXPECT_EQ(reference->ResolveTarget(Var(1)), reference);
    EXPECT_EQ(reference->ResolveTarget(Var(1)), reference) << "remembered";
    const Weak<Reference> watch(reference.Get());
    reference.Reset();
    table.Reset();
    EXPECT_EQ(watch.Get(), nullptr);
}

/// A scene file with one node, and a table that is bound to a scene which can load it.
class ReferenceFiles : public testing::Test {
protected:
    void SetUp() override {
        const auto stored = Make<k3::Scene>();
        stored->CreateEmptyNode(0, 0, 0)->SetName(L"from file");
        ASSERT_TRUE(SaveSceneFile(*stored, file_, *context_));
        table_->SetSceneAndContext(scene_.Get(), context_.Get());
    }
    bool IsConsumed(const Counted<Reference>& reference) { return reference->GetTarget().IsEmpty(); }

    TempFolder folder_;
    String file_ = folder_.File("part.qn");
    Counted<RecordingContext> context_ = MakeContext();
    Counted<k3::Scene> scene_ = Make<k3::Scene>();
    Counted<LookupTable> table_ = NewTable();
};

TEST_F(ReferenceFiles, AreLoadedOnceForTheirName) {
    const auto reference = WithTarget(*table_, Var(file_));
    const auto loaded = reference->ResolveTarget(Var(L"ignored"));
    ASSERT_TRUE(loaded);
    EXPECT_NE(loaded, reference);
    reference->SetTarget(Var(file_));
    EXPECT_EQ(reference->ResolveTarget(Var()), loaded);
    EXPECT_EQ(scene_->GetFirstChild(), nullptr) << "the node left the scene again";
}

TEST_F(ReferenceFiles, AreNotReloadedForOtherTargets) {
    for (const Var& target : {Var(), NewObject(), MapOf({}), Var(5)}) {
        const auto reference = WithTarget(*table_, target);
        auto dead = reference->CreateInstance();
        dead.Reset();
        reference->ReloadExternalTarget();
        EXPECT_EQ(reference->GetInstanceCount(), 1) << "the list is as it was";
        EXPECT_EQ(reference->GetTarget(), target);
    }
}

TEST_F(ReferenceFiles, ReloadKeepsTheLiveInstancesOnWhatTheFileBrought) {
    const auto reference = table_->GetOrCreateReference(L"e40");
    reference->SetTarget(Var(file_));
    const auto a = reference->CreateInstance();
    auto dead = reference->CreateInstance();
    const auto b = reference->CreateInstance();
    dead.Reset();
    reference->ReloadExternalTarget();

    Reference* now = a->GetReference();
    ASSERT_TRUE(now);
    EXPECT_EQ(b->GetReference(), now);
    ASSERT_EQ(now->GetInstanceCount(), 2) << "the dead one is gone";
    EXPECT_EQ(now->GetInstance(0), a);
    EXPECT_EQ(now->GetInstance(1), b);
    EXPECT_EQ(table_->FindReferenceById(L"e40"), now);
}

TEST_F(ReferenceFiles, ReloadDropsTheDeadEntriesOfAReferenceThatStandsForItself) {
    context_->SetOption("prevent_reinstancing", 1);
    const auto reference = table_->GetOrCreateReference(L"e40");
    reference->SetTarget(Var(file_));
    auto dead = reference->CreateInstance();
    const auto live = reference->CreateInstance();
    dead.Reset();
    reference->ReloadExternalTarget();
    ASSERT_EQ(reference->GetInstanceCount(), 1);
    EXPECT_EQ(reference->GetInstance(0), live);
    EXPECT_EQ(live->GetReference(), reference);
}

TEST_F(ReferenceFiles, ReloadKeepsTheListWhereNothingCanBeLoaded) {
    table_->SetSceneAndContext(nullptr, nullptr);
    const auto reference = WithTarget(*table_, Var(file_));
    const auto use = reference->CreateInstance();
    auto dead = reference->CreateInstance();
    dead.Reset();
    reference->ReloadExternalTarget();
    EXPECT_EQ(reference->GetInstanceCount(), 2);
    EXPECT_EQ(use->GetReference(), reference);
    EXPECT_TRUE(IsConsumed(reference)) << "a load that gives nothing takes the file name away";
}

TEST_F(ReferenceFiles, ResolveToNothingThatIsNotRemembered) {
    table_->SetSceneAndContext(nullptr, nullptr);
    const auto reference = WithTarget(*table_, Var(file_));
    EXPECT_FALSE(reference->ResolveTarget(Var()));
    table_->SetSceneAndContext(scene_.Get(), context_.Get());
    reference->SetTarget(Var(file_));
    EXPECT_TRUE(reference->ResolveTarget(Var()));
}

}  // namespace
}  // namespace qn::test

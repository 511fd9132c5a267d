// How a broken hierarchy becomes a plain scene.

#include "frame/host/meta.h"
#include "tests/behaviour/checker_scene.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

/// Two cars and between them a third that is sound.
struct ThreeCars : CheckedCar {
    ThreeCars() {
        sound = ShowUse(*scene, *use);
        last = ShowUse(*scene, *use);
        lamp->DeleteParam(Param::kInstance);
        last->GetChildAt(0)->DeleteParam(Param::kInstance);
        last->SetName(L"last");
    }
    bool Repair() const { return checker->RepairTopLevelNodes(scene.Get(), log.Get()); }
    k3::Node *sound, *last;
};

TEST(CheckerRepair, ChecksEveryTopLevelNodeAndTellsWhatEachLost) {
    const ThreeCars s;
    EXPECT_FALSE(s.Repair());
    EXPECT_EQ(s.Log(), (Lines{kNoLamp, MetadataLost("car"), kNoWheel, MetadataLost("last")}));
}

TEST(CheckerRepair, CutsTheLinksOfWhatFailedAndOfNothingElse) {
    const ThreeCars s;
    s.Repair();
    for (const k3::Node* node : {s.car, s.wheel, s.lamp, s.last, s.last->GetChildAt(1)})
        EXPECT_FALSE(ShownBy(*node));
    EXPECT_EQ(ShownBy(*s.sound), s.use.Get());
    EXPECT_EQ(ShownBy(*s.sound->GetChildAt(1)), s.lampUse);
    EXPECT_EQ(Outline(*s.scene), "(car(wheel lamp) car(wheel lamp) last(wheel lamp))");
}

TEST(CheckerRepair, TakesIdsAndLeavesMetadataAndContent) {
    const ThreeCars s;
    const auto object = Make<k3::Object3D>();
    s.wheel->SetObject(object.Get());
    s.wheel->SetParamVar(Param::kBsId, Var(L"s1"));
    s.wheel->SetParamVar(Param::kExternalIds, MapOf({{Var(L"a"), Var(1)}}));
    s.wheel->SetMetaValue(Var(L"key"), Var(5));
    EXPECT_FALSE(s.Repair());
    EXPECT_TRUE(s.wheel->GetParamVar(Param::kBsId).IsEmpty());
    EXPECT_TRUE(s.wheel->GetParamVar(Param::kExternalIds).IsEmpty());
    EXPECT_EQ(GetMeta(s.wheel, Var(L"key"), 0), Var(5));
    EXPECT_EQ(s.wheel->GetObject(), object.Get());
}

TEST(CheckerRepair, LeavesTheDefinitionsAlone) {
    const ThreeCars s;
    s.Repair();
    EXPECT_EQ(Outline(*s.use->GetReference()), "car(wheel lamp)");
    EXPECT_EQ(NameOf(*s.lampUse), String(L"lamp"));
}

}  // namespace
}  // namespace qn::test

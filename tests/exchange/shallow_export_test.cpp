#include "exchange/shallow_export.h"

#include "engine/stream/scene_file.h"
#include "exchange/spatial_index.h"
#include "frame/host/api.h"
#include "product/bom.h"
#include "tests/exchange/exchange_support.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qn::test {
namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

/// The arguments of one export, by meaning.
struct Call {
    String file, index, title;
    Interface* structure = nullptr;
    Interface* header = nullptr;
    String format, levels, metadata, start;
};

class ShallowExportTest : public testing::Test {
protected:
    ShallowExportTest() {
        call_.file = folder_.File("car.json");
        call_.structure = scene_.Get();
    }
    bool Run() {
        return Make<exchange::ShallowExport>()->Export(call_.file, call_.index, call_.title, call_.structure,
                                                       call_.header, call_.format, call_.levels,
                                                       call_.metadata, call_.start, context_.Get());
    }
    json Exported() {
        EXPECT_TRUE(Run()) << context_->GetFailureText().ToUtf8();
        return ReadJson(call_.file);
    }
    /// What is told of a call that is refused.
    std::string Refusal() {
        EXPECT_FALSE(Run());
        EXPECT_FALSE(HasFile(call_.file));
        return context_->GetFailureText().ToUtf8();
    }
    TempFolder folder_;
    Counted<k3::Scene> scene_ = SceneOf(Car().Shape());
    Call call_;
    Counted<RecordingContext> context_ = MakeContext();
};

TEST_F(ShallowExportTest, WritesTheTreeWithPlacesAndWithoutGeometry) {
    scene_->SetName(L"garage");
    const json written = Exported();
    EXPECT_EQ(written["format"], "assembly-structure");
    EXPECT_EQ(written["name"], "garage");
    ASSERT_EQ(written["selectors"].size(), 10u);
    EXPECT_FALSE(written["selectors"][0].contains("matrix")) << "the car stands at the origin";
    EXPECT_EQ(written["selectors"][1]["matrix"][12], 1);
    EXPECT_EQ(written["entities"].size(), 4u);
    EXPECT_THAT(ReadBytes(call_.file.ToUtf8()), testing::Not(HasSubstr("mesh")));
}

TEST_F(ShallowExportTest, TakesItsNameAndHeadFromTheArguments) {
    const auto header = Metadata(L"Order", L"number", Var(7));
    call_.title = L"wanted";
    call_.header = header.Get();
    const json written = Exported();
    EXPECT_EQ(written["name"], "wanted");
    EXPECT_EQ(written["header"]["Order"]["number"], 7);
}

TEST_F(ShallowExportTest, TakesANodeAsStructure) {
    call_.structure = FindNode(*scene_, "wheel");
    const json written = Exported();
    EXPECT_EQ(written["name"], "wheel");
    EXPECT_EQ(written["selectors"].size(), 2u);
    EXPECT_TRUE(written["selectors"][0]["parent"].is_null());
}

TEST_F(ShallowExportTest, TakesABillOfMaterialsAsStructure) {
    const auto bom = CreateAs<k3::Bom>(k3::kBomKey);
    ASSERT_TRUE(bom);
    bom->SetScene(scene_.Get());
    ASSERT_EQ(bom->Initialize(Var(L"service"), false), ResultEnum::kSuccess);
    call_.structure = bom.Get();
    const json written = Exported();
    EXPECT_EQ(written["name"], "service");
    EXPECT_EQ(written["selectors"].size(), 10u);
}

TEST_F(ShallowExportTest, EndsAtTheWantedLevel) {
    call_.levels = L"2";
    EXPECT_EQ(Exported()["selectors"].size(), 6u);
}

TEST_F(ShallowExportTest, StartsAtTheWantedOccurrence) {
    call_.start = L"s:wheel.3";
    EXPECT_EQ(Exported()["selectors"][0]["bs_id"], "s:wheel.3");
    call_.start = L"n:tyre.1";
    EXPECT_EQ(Exported()["selectors"][0]["bs_id"], "s:tyre.1") << "the first of four";
}

TEST_F(ShallowExportTest, LeavesOutMetadataWhereAsked) {
    FindNode(*scene_, "car")->SetMetadata(Metadata(L"A", L"b", Var(1)).Get());
    EXPECT_TRUE(Exported()["selectors"][0].contains("metadata"));
    call_.metadata = L"none";
    EXPECT_FALSE(Exported()["selectors"][0].contains("metadata"));
}

TEST_F(ShallowExportTest, WritesASceneThatLoadsAgain) {
    FindNode(*scene_, "car")->SetMetadata(Metadata(L"A", L"b", Var(1)).Get());
    call_.file = folder_.File("car.qn");
    ASSERT_TRUE(Run()) << context_->GetFailureText().ToUtf8();
    const auto loaded = Make<k3::Scene>();
    ASSERT_TRUE(LoadSceneFile(call_.file, *loaded, *context_));
    EXPECT_EQ(NamesOf(*loaded), NamesOf(*scene_));
    k3::Node* wheel = FindNode(*loaded, "wheel");
    EXPECT_EQ(wheel->GetParamVar(Param::kBsId).ToText(), String(L"s:wheel.1"));
    Matrix4<double> matrix;
    wheel->GetMatrix(&matrix, 0);
    EXPECT_EQ(matrix.m[3][0], 2);
    EXPECT_EQ(FindNode(*loaded, "chassis")->GetObject(), nullptr);
    EXPECT_NE(FindNode(*loaded, "car")->GetMetadata(false), nullptr);
}

TEST_F(ShallowExportTest, TakesTheFormatFromTheArgumentBeforeTheEnding) {
    call_.file = folder_.File("car.data");
    EXPECT_TRUE(Exported().contains("selectors")) << "json unless told otherwise";
    call_.format = L"scene";
    ASSERT_TRUE(Run());
    const auto loaded = Make<k3::Scene>();
    EXPECT_TRUE(LoadSceneFile(call_.file, *loaded, *context_));
}

TEST_F(ShallowExportTest, CopiesAsManyLevelsToASceneAsWanted) {
    call_.file = folder_.File("car.qn");
    call_.levels = L"1";
    ASSERT_TRUE(Run());
    const auto loaded = Make<k3::Scene>();
    ASSERT_TRUE(LoadSceneFile(call_.file, *loaded, *context_));
    EXPECT_THAT(NamesOf(*loaded), ElementsAre("car"));
}

TEST_F(ShallowExportTest, WritesTheSpatialIndexWhereAsked) {
    call_.index = folder_.File("car.index");
    ASSERT_TRUE(Run());
    exchange::SpatialIndex index;
    exchange::ReadProblem problem;
    ASSERT_TRUE(exchange::ParseSpatialIndex(ReadBytes(call_.index.ToUtf8()), index, problem));
    EXPECT_EQ(index.entries.size(), 5u);
}

TEST_F(ShallowExportTest, RefusesArgumentsThatItCannotUse) {
    call_.levels = L"some";
    EXPECT_THAT(Refusal(), HasSubstr("some"));
}

TEST_F(ShallowExportTest, RefusesAnUnknownFormat) {
    call_.format = L"paper";
    EXPECT_THAT(Refusal(), HasSubstr("paper"));
}

TEST_F(ShallowExportTest, RefusesAnUnknownWordForMetadata) {
    call_.metadata = L"some";
    EXPECT_THAT(Refusal(), HasSubstr("some"));
}

TEST_F(ShallowExportTest, RefusesAnUnknownStart) {
    call_.start = L"s:none";
    EXPECT_THAT(Refusal(), HasSubstr("s:none"));
}

TEST_F(ShallowExportTest, RefusesWhatIsNoStructure) {
    const auto map = VarMap::Create();
    call_.structure = map.Get();
    EXPECT_THAT(Refusal(), HasSubstr("structure"));
}

TEST_F(ShallowExportTest, RefusesAMissingFileName) {
    call_.file = String();
    EXPECT_FALSE(Run());
    EXPECT_FALSE(context_->Texts().empty());
}

TEST_F(ShallowExportTest, CopiesTenThousandLevels) {
    scene_ = SceneOf(DeepShape(10'000));
    call_.structure = scene_.Get();
    call_.file = folder_.File("deep.qn");
    EXPECT_TRUE(Run());
    call_.file = folder_.File("deep.json");
    EXPECT_EQ(Exported()["selectors"].size(), 10'000u);
}

}  // namespace
}  // namespace qn::test

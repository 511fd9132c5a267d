// Files that were damaged on purpose, through the tool: found, named and repaired.

#include "engine/stream/scene_file.h"
#include "frame/entry.h"
#include "frame/host/scene.h"
#include "tests/support/accepted_leaks.h"
#include "tests/support/assembly.h"
#include "tests/support/generated_scene.h"
#include "tests/support/museum.h"
#include "tests/support/static_module.h"
#include "tests/tool/tool_process.h"

#include <gtest/gtest.h>
#include <stdlib.h>

#include <ostream>
#include <stdexcept>
#include <string_view>

namespace qn::test {
static void PrintTo(const Exhibit& exhibit, std::ostream* out) {
    *out << exhibit.name;
}
}  // namespace qn::test

namespace assembly::tests {
namespace {

using nlohmann::json;
using qn::test::Exhibit;

/// Writes what `make` gives, as nodes if it has any.
template <class MakeScene>
void Save(const std::string& file, MakeScene&& make) {
    const qn::test::AcceptedLeaks circles;
    const qn::test::EntryModule module(&K3DLLFunc);
    const auto context = qn::api->CreateContext(0, 0);
    if (!qn::SaveSceneFile(*make(), qn::String::FromUtf8(file), *context))
        throw std::runtime_error("not saved: " + file);
}

const Exhibit& Named(std::string_view name) {
    for (const Exhibit& exhibit : qn::test::Museum())
        if (exhibit.name == name) return exhibit;
    throw std::runtime_error("no such exhibit");
}

class CheckedExhibit : public testing::TestWithParam<Exhibit> {
protected:
    void SetUp() override {
        Save(damaged_, GetParam().make);
        // A circle of counted objects that was cut off lives until the process ends.
        if (std::string_view(GetParam().name) == "circle_of_nodes") ::setenv(kSanitizer, "detect_leaks=0", 1);
    }
    void TearDown() override { ::unsetenv(kSanitizer); }

    static constexpr const char* kSanitizer = "ASAN_OPTIONS";

    TemporaryFolder folder_;
    std::string damaged_ = folder_.File("damaged.qn");
    std::string sound_ = folder_.File("sound.qn");
};

TEST_P(CheckedExhibit, IsFoundAndNamedWithItsPlace) {
    const ToolRun run = RunTool({"check", "--format", "json", damaged_});
    EXPECT_EQ(run.exitCode, 1) << run.err;
    const json checked = json::parse(run.out);
    EXPECT_EQ(checked["findings"], 1) << run.out;
    ASSERT_EQ(checked["files"][0]["findings"].size(), 1u);
    const json& finding = checked["files"][0]["findings"][0];
    EXPECT_EQ(finding["code"], GetParam().code);
    EXPECT_EQ(finding["path"], GetParam().path);
    EXPECT_FALSE(finding["message"].get<std::string>().empty());
}

TEST_P(CheckedExhibit, IsOneLineOfText) {
    const ToolRun run = RunTool({"check", damaged_});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 1) << run.out;
    EXPECT_EQ(run.out.rfind(damaged_ + ": ", 0), 0u) << run.out;
    EXPECT_NE(run.out.find("[" + std::string(GetParam().code) + "]\n"), std::string::npos) << run.out;
}

TEST_P(CheckedExhibit, IsSoundOnceRepairedAndStaysSo) {
    const ToolRun repair = RunTool({"repair", damaged_, "-o", sound_});
    EXPECT_EQ(repair.exitCode, 0) << repair.err;
    EXPECT_FALSE(repair.out.empty());
    const ToolRun check = RunTool({"check", sound_});
    EXPECT_EQ(check.exitCode, 0) << check.out << check.err;
    EXPECT_EQ(check.out, "");
    const ToolRun again = RunTool({"repair", "--dry-run", sound_});
    EXPECT_EQ(again.exitCode, 0) << again.out;
    EXPECT_EQ(again.out, "");
}

TEST_P(CheckedExhibit, IsOnlyToldOfInADryRun) {
    const std::string before = ReadAll(damaged_);
    const ToolRun dry = RunTool({"repair", "--dry-run", "--format", "json", damaged_});
    EXPECT_EQ(dry.exitCode, 1) << dry.err;
    const json told = json::parse(dry.out);
    EXPECT_TRUE(told["saved"].is_null());
    EXPECT_FALSE(told["changes"].empty());
    EXPECT_EQ(ReadAll(damaged_), before);
    const ToolRun real = RunTool({"repair", "--in-place", "--format", "json", damaged_});
    EXPECT_EQ(real.exitCode, 0) << real.err;
    EXPECT_EQ(json::parse(real.out)["changes"], told["changes"]);
    EXPECT_NE(ReadAll(damaged_), before);
}

INSTANTIATE_TEST_SUITE_P(, CheckedExhibit, testing::ValuesIn(qn::test::Museum()),
                         [](const auto& info) { return std::string(info.param.name); });

class CheckedFiles : public testing::Test {
protected:
    CheckedFiles() {
        Save(nodes_, &qn::test::SoundNodes);
        Save(definitions_, &qn::test::SoundDefinitions);
        Save(damaged_, Named("wrong_object").make);
    }
    TemporaryFolder folder_;
    std::string nodes_ = folder_.File("nodes.qn");
    std::string definitions_ = folder_.File("definitions.qn");
    std::string damaged_ = folder_.File("damaged.qn");
};

TEST_F(CheckedFiles, HaveNoFindingsIfTheyAreSound) {
    for (const std::string& file : {nodes_, definitions_}) {
        const ToolRun run = RunTool({"check", file});
        EXPECT_EQ(run.exitCode, 0) << run.out;
        EXPECT_EQ(run.out, "");
        EXPECT_EQ(run.err, "assembly: 1 file checked, 0 findings\n");
    }
}

TEST_F(CheckedFiles, ComeInTheOrderOfTheCallHoweverManyRunAtOnce) {
    const std::vector<std::string> files = {definitions_, damaged_, nodes_, damaged_, definitions_};
    std::string first;
    for (const char* jobs : {"1", "2", "5", "100"}) {
        std::vector<std::string> call = {"check", "--format", "json", "--jobs", jobs};
        call.insert(call.end(), files.begin(), files.end());
        const ToolRun run = RunTool(call);
        EXPECT_EQ(run.exitCode, 1) << run.err;
        const json checked = json::parse(run.out);
        ASSERT_EQ(checked["files"].size(), files.size());
        for (std::size_t i = 0; i < files.size(); ++i)
            EXPECT_EQ(checked["files"][i]["file"], files[i]);
        EXPECT_EQ(checked["findings"], 2);
        if (first.empty()) first = run.out;
        EXPECT_EQ(run.out, first);
    }
}

TEST_F(CheckedFiles, DoNotKeepEachOtherFromBeingChecked) {
    const ToolRun run = RunTool({"check", damaged_, folder_.File("missing.qn"), damaged_});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 2) << run.out;
    EXPECT_NE(run.err.find("missing.qn"), std::string::npos);
    EXPECT_NE(run.err.find("3 files checked, 2 findings"), std::string::npos);
}

TEST_F(CheckedFiles, TellOfAFailureInJson) {
    const ToolRun run = RunTool({"check", "--format", "json", folder_.File("missing.qn")});
    EXPECT_EQ(run.exitCode, 3);
    const json checked = json::parse(run.out);
    EXPECT_EQ(checked["files"][0]["exit_code"], 3);
    EXPECT_FALSE(checked["files"][0]["failure"].get<std::string>().empty());
    EXPECT_TRUE(checked["files"][0]["findings"].empty());
}

TEST_F(CheckedFiles, AreNotTouchedByACheck) {
    const std::string before = ReadAll(damaged_);
    RunTool({"check", damaged_});
    EXPECT_EQ(ReadAll(damaged_), before);
}

TEST_F(CheckedFiles, AreNotWrittenInPlaceIfThereIsNothingToRepair) {
    const auto written = std::filesystem::last_write_time(nodes_);
    const ToolRun run = RunTool({"repair", "--in-place", "--format", "json", nodes_});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_TRUE(json::parse(run.out)["saved"].is_null());
    EXPECT_EQ(std::filesystem::last_write_time(nodes_), written);
}

TEST_F(CheckedFiles, AreCopiedByARepairThatHasNothingToDo) {
    for (const std::string& file : {nodes_, definitions_}) {
        const std::string copy = folder_.File("copy.qn"), second = folder_.File("second.qn");
        EXPECT_EQ(RunTool({"repair", file, "-o", copy}).exitCode, 0);
        EXPECT_EQ(RunTool({"repair", copy, "-o", second}).exitCode, 0);
        EXPECT_TRUE(ReadAll(second) == ReadAll(copy));
    }
}

TEST_F(CheckedFiles, NeedAPlaceForTheRepairedScene) {
    EXPECT_EQ(RunTool({"repair", damaged_}).exitCode, 2);
    EXPECT_EQ(RunTool({"repair", damaged_, "-o", folder_.File("out.step")}).exitCode, 2);
    EXPECT_EQ(RunTool({"repair", damaged_, "-o", folder_.File("none/out.qn")}).exitCode, 4);
    EXPECT_EQ(RunTool({"repair", damaged_, "--in-place", "-o", folder_.File("out.qn")}).exitCode, 2);
}

TEST_F(CheckedFiles, KeepNamesFromMovingTheCursor) {
    Save(damaged_, [] {
        auto scene = Named("too_many_children").make();
        scene->GetFirstChild()->SetName(L"car\x1b[2J");
        return scene;
    });
    const ToolRun run = RunTool({"check", damaged_});
    EXPECT_EQ(run.exitCode, 1);
    EXPECT_EQ(run.out.find('\x1b'), std::string::npos);
}

/// Several things at once, some of which hide others.
qn::Counted<qn::k3::Scene> BadlyDamaged() {
    auto scene = Named("wrong_object").make();
    qn::k3::Node& car = *scene->GetFirstChild();
    car.GetChildAt(1)->GetChildAt(0)->DeleteParam(qn::Param::kInstance);
    car.GetChildAt(2)->CreateChildNode(0, 0, 0)->SetName(L"valve");
    qn::k3::Layer* const layer = scene->CreateLayer(L"shown");
    layer->AddNode(&car);
    layer->GetMembers()->Add(car.GetChildAt(0)->GetObject());
    return scene;
}

TEST_F(CheckedFiles, TellOfEverythingThatIsWrong) {
    Save(damaged_, &BadlyDamaged);
    const ToolRun run = RunTool({"check", "--format", "json", damaged_});
    EXPECT_EQ(run.exitCode, 1) << run.err;
    const json checked = json::parse(run.out);
    std::vector<std::string> codes;
    for (const json& finding : checked["files"][0]["findings"])
        codes.push_back(finding["path"].get<std::string>() + " " + finding["code"].get<std::string>());
    EXPECT_EQ(codes, (std::vector<std::string>{"car/chassis wrong-object", "car/wheel[1]/tyre wrong-instance",
                                               "car/wheel[2] too-many-children", " invalid-layer-member"}));
    EXPECT_EQ(RunTool({"repair", "--in-place", damaged_}).exitCode, 0);
    EXPECT_EQ(RunTool({"check", damaged_}).exitCode, 0);
}

TEST_F(CheckedFiles, AreRepairedAndReportedWhenAnotherVerbOpensThem) {
    const ToolRun run = RunTool({"show", damaged_});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.err.rfind("assembly: " + damaged_ + ": File Validation Issue: Issues were found", 0), 0u)
        << run.err;
    EXPECT_EQ(RunTool({"show", nodes_}).err, "");
}

/// Two definitions of one server id, which a load makes one, below nodes that show the objects of both.
qn::Counted<qn::k3::Scene> SharedServerId() {
    const auto car =
        qn::test::AssemblyBuilder("car").Child("left door").Child("right door").WithContent().Build();
    auto scene = qn::test::GeneratedScene(car);
    qn::k3::Node* const top = scene->GetFirstChild();
    const auto context = qn::api->CreateContext(0, 0);
    qn::k3::Generator::Get(top)->Generate(top, context.Get());
    top->SetName(L"car");
    top->SetText(L"edited");
    top->GetChildAt(0)->SetText(L"edited");  // so that the nodes are stored
    for (const char* door : {"left door", "right door"})
        car.Ref(door)->SetProperty(qn::graph::Prop::kBsId, qn::Var(L"s:door"));
    return scene;
}

TEST_F(CheckedFiles, AreSeenAsALoadSeesThemWhereNodesStandBelowAGenerator) {
    Save(damaged_, &SharedServerId);
    const ToolRun run = RunTool({"check", damaged_});
    EXPECT_EQ(run.exitCode, 1) << run.err;
    EXPECT_NE(run.out.find("[wrong-object]"), std::string::npos) << run.out;
    const ToolRun repair = RunTool({"repair", "--in-place", damaged_});
    EXPECT_EQ(repair.exitCode, 0) << repair.err;
    const ToolRun again = RunTool({"check", damaged_});
    EXPECT_EQ(again.exitCode, 0) << repair.out << again.out;
}

TEST_F(CheckedFiles, MayBeTenThousandLevelsDeep) {
    Save(nodes_, [] {
        const qn::test::Assembly deep(qn::test::DeepShape(10'000));
        return qn::test::GeneratedScene(deep);
    });
    EXPECT_EQ(RunTool({"check", nodes_}).exitCode, 0);
    EXPECT_EQ(RunTool({"repair", "--dry-run", nodes_}).exitCode, 0);
}

}  // namespace
}  // namespace assembly::tests

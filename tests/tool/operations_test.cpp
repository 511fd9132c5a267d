// Operations by name, as a person, a script or a service meets them.

#include "tests/tool/tool_process.h"

#include "engine/xml/xml_document.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace assembly::tests {
namespace {

using nlohmann::json;

const std::string kLantern = ASSEMBLY_SAMPLES_DIR "/lantern.stp";

bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

json Operations() {
    static const json operations = ToolJson({"ops", "--format", "json"})["operations"];
    return operations;
}

json SchemaDefinitions() {
    static const json schema = ToolJson({"ops", "--format", "schema"});
    return schema["$defs"];
}

/// A scene file without geometry, made from the sample.
std::string Lantern(const TemporaryFolder& folder) {
    const std::string file = folder.File("lantern.qn");
    EXPECT_EQ(RunTool({"convert", "--structure-only", kLantern, file}).exitCode, 0);
    return file;
}

TEST(Ops, ListsWhatTheModuleDescribes) {
    const ToolRun run = RunTool({"ops"});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(std::count(run.out.begin(), run.out.end(), '\n'), 16);
    EXPECT_EQ(run.out.rfind("1   remove_qfxml_ids", 0), 0u) << run.out;
    EXPECT_TRUE(Contains(run.out, "validate_scene_hierarchy")) << run.out;
    EXPECT_FALSE(Contains(run.out, "|")) << "the mark of texts to translate is for machines";
}

TEST(Ops, ShowsOneOperationWithItsArguments) {
    const ToolRun run = RunTool({"ops", "update_bs_ids"});
    EXPECT_TRUE(Contains(run.out, "modification_string=TEXT")) << run.out;
    EXPECT_TRUE(Contains(run.out, "needed")) << run.out;
    EXPECT_EQ(RunTool({"ops", "3"}).out, run.out);
}

TEST(Ops, DescribesMethodsWithDefaultsAsJson) {
    const json operations = Operations();
    ASSERT_EQ(operations.size(), 16u);
    const json& thumbnails = operations[7];
    EXPECT_EQ(thumbnails["id"], 10);
    EXPECT_EQ(thumbnails["name"], "regenerate_scene_thumbnails");
    EXPECT_EQ(thumbnails["private"], false);
    EXPECT_EQ(thumbnails["result"], "bool");
    EXPECT_EQ(thumbnails["parameters"][0]["type"], "scene");
    EXPECT_EQ(thumbnails["parameters"][1]["default"], "true");
    EXPECT_TRUE(operations[0]["private"]);
}

TEST(Ops, GivesTheDescriptionBackAsXml) {
    const ToolRun run = RunTool({"ops", "--format", "xml"});
    const auto root = qn::xml::ParseXml(run.out);
    ASSERT_TRUE(root) << run.out;
    EXPECT_EQ(root->GetName(), qn::String(L"Interface"));
    qn::xml::Element* methods = root->FindChild(L"Methods");
    ASSERT_NE(methods, nullptr);
    ASSERT_EQ(methods->GetChildCount(), 16);
    qn::xml::Element* first = methods->GetChild(0);
    EXPECT_EQ(first->FindAttribute(L"comment")->GetValue(), qn::String(L"|Removes QfXml Ids from the scene"));
    EXPECT_EQ(first->GetChildCount(), 8) << "the result and seven parameters";
}

TEST(Ops, WritesAJsonSchemaForEachOperation) {
    const json definitions = SchemaDefinitions();
    for (const json& operation : Operations()) {
        const json& schema = definitions[operation["name"].get<std::string>()];
        EXPECT_EQ(schema["x-id"], operation["id"]);
        EXPECT_EQ(schema["x-private"], operation["private"]);
        EXPECT_EQ(schema["additionalProperties"], false);
        EXPECT_EQ(schema["properties"].size(), operation["parameters"].size());
    }
    const json& update = definitions["update_bs_ids"];
    EXPECT_EQ(update["properties"]["suffix"], json::parse(R"({"type": "boolean",
        "description": "Append to the name", "default": false})"));
    EXPECT_EQ(update["required"], json::parse(R"(["scene", "modification_string"])"));
}

TEST(Ops, WritesASchemaThatNamesItsDialectAndItsCalls) {
    const json schema = ToolJson({"ops", "--format", "schema"});
    EXPECT_EQ(schema["$schema"], "https://json-schema.org/draft/2020-12/schema");
    ASSERT_EQ(schema["oneOf"].size(), 16u);
    EXPECT_EQ(schema["oneOf"][0]["properties"]["operation"]["const"], "remove_qfxml_ids");
    EXPECT_EQ(schema["oneOf"][0]["properties"]["arguments"]["$ref"], "#/$defs/remove_qfxml_ids");
}

TEST(Run, PrintsTheHelpOfAnOperationFromItsDescription) {
    for (const json& operation : Operations()) {
        const ToolRun run = RunTool({"run", operation["name"], "--help"});
        EXPECT_EQ(run.exitCode, 0) << run.err;
        EXPECT_EQ(run.out.rfind("Examples:", 0), 0u) << run.out;
        for (const json& parameter : operation["parameters"])
            if (parameter["type"] != "scene") {
                EXPECT_TRUE(Contains(run.out, parameter["name"])) << run.out;
            }
    }
}

TEST(Run, PrintsItsOwnHelpWithoutAName) {
    const ToolRun run = RunTool({"run", "--help"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.out.rfind("Examples:", 0), 0u) << run.out;
}

TEST(Run, TellsWhatIsWrongWithACallAndWhatWasExpected) {
    const struct {
        std::vector<std::string> words;
        const char* told;
    } kCalls[] = {
        {{"run"}, "NAME"},
        {{"run", "validate_scene_hierachy", kLantern}, "did you mean \"validate_scene_hierarchy\"?"},
        {{"run", "validate_scene_hierarchy"}, "missing: FILE"},
        {{"run", "update_bs_ids", kLantern, "sufix=true"}, "did you mean \"suffix\"?"},
        {{"run", "update_bs_ids", kLantern, "suffix=perhaps", "modification_string=x"}, "true or false"},
        {{"run", "update_bs_ids", kLantern}, "missing: \"modification_string\""},
        {{"run", "generate_bs_ids", kLantern}, "missing: \"prefix_string\", \"suffix_string\""},
        {{"run", "update_bs_ids", kLantern, "suffix"}, "key=value"},
        {{"run", "update_bs_ids", kLantern, "suffix=true", "suffix=true"}, "twice"},
        {{"run", "update_bs_ids", "--help=now"}, "help"},
        {{"run", "validate_scene_hierarchy", kLantern, "--in-place"}, ".qn"},
        {{"run", "validate_scene_hierarchy", kLantern, "-o", "out.stp"}, ".qn"},
        {{"run", "validate_scene_hierarchy", "a.qn", "-o", "b.qn", "--in-place"}, "exclude"},
        {{"run", "visual_context_extract", "source_qfxml_file=a",
          "spatial_index_file=", "output_visual_context_query_file=q", "-o", "b.qn"},
         "no scene"},
        {{"run", "validate_scene_hierarchy", kLantern, "--seed", "0"}, "--seed"},
        {{"run", "validate_scene_hierarchy", kLantern, "--seed", "-1"}, "--seed"},
        {{"run", "99", kLantern}, "no operation \"99\""},
    };
    for (const auto& [words, told] : kCalls) {
        const ToolRun run = RunTool(words);
        EXPECT_EQ(run.exitCode, 2) << told << run.err;
        EXPECT_TRUE(run.out.empty()) << run.out;
        EXPECT_TRUE(Contains(run.err, told)) << told << "\n" << run.err;
    }
}

TEST(Run, AcceptsWhatTheSchemaAccepts) {
    const TemporaryFolder folder;
    const std::string file = Lantern(folder);
    const json definitions = SchemaDefinitions();
    for (const auto& [name, schema] : definitions.items()) {
        std::vector<std::string> words = {"run", name};
        for (const auto& [key, property] : schema["properties"].items()) {
            const bool isScene = key == "scene";
            const bool isText = property["type"] == "string";
            words.push_back(key + "=" + (isScene ? file : isText ? folder.File("text") : "true"));
        }
        EXPECT_NE(RunTool(words).exitCode, 2) << name;
    }
}

TEST(Run, EveryPublicOperationWithItsDefaults) {
    const TemporaryFolder folder;
    const std::string file = Lantern(folder);
    for (const json& operation : Operations()) {
        if (operation["private"]) continue;
        const json run = ToolJson({"run", operation["name"], file, "--format", "json"});
        EXPECT_EQ(run["operation"], operation["name"]);
        EXPECT_EQ(run["id"], operation["id"]);
        EXPECT_EQ(run["result"], 1) << operation["name"];
        EXPECT_TRUE(run["saved"].is_null());
        EXPECT_EQ(run["messages"], json::array());
    }
}

TEST(Run, TakesTheIdForTheName) {
    EXPECT_EQ(ToolJson({"run", "11", kLantern, "--format", "json"})["operation"], "validate_scene_hierarchy");
}

TEST(Run, SaysThatNothingWasSavedUnlessAskedFor) {
    const ToolRun run = RunTool({"run", "validate_scene_hierarchy", kLantern});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_EQ(run.out, "validate_scene_hierarchy: 1, the scene was not saved\n");
}

TEST(Run, AnswersOneAndSavesNothingWhereTheOperationAnswersZero) {
    const TemporaryFolder folder;
    const ToolRun run =
        RunTool({"run", "update_bs_ids", kLantern, "modification_string=x", "-o", folder.File("out.qn")});
    EXPECT_EQ(run.exitCode, 1) << run.err;
    EXPECT_EQ(run.out, "update_bs_ids: 0\n");
    EXPECT_TRUE(Contains(run.err, "answered 0")) << run.err;
    EXPECT_FALSE(std::filesystem::exists(folder.File("out.qn")));
}

TEST(Run, SavesBesideOrInPlace) {
    const TemporaryFolder folder;
    const std::string file = Lantern(folder), before = ReadAll(file);
    const std::vector<std::string> call = {"run", "15", file, "--seed", "7"};
    const auto with = [&](std::initializer_list<std::string> more) {
        std::vector<std::string> words = call;
        words.insert(words.end(), more);
        return RunTool(words);
    };
    const std::string beside = folder.File("beside.qn");
    const ToolRun run = with({"-o", beside});
    EXPECT_EQ(run.exitCode, 0) << run.err;
    EXPECT_TRUE(Contains(run.out, "saved as " + beside)) << run.out;
    EXPECT_TRUE(ReadAll(file) == before);
    EXPECT_EQ(with({"--in-place"}).exitCode, 0);
    EXPECT_TRUE(ReadAll(file) == ReadAll(beside));
}

TEST(Run, GivesTheSameIdsForTheSameSeedAndOthersForAnother) {
    const TemporaryFolder folder;
    const auto bytes = [&](const std::string& seed) {
        const std::string out = folder.File("out" + seed + ".qn");
        EXPECT_EQ(RunTool({"run", "generate_scene_instance_reference_hierarchy", kLantern, "-o", out,
                           "--seed", seed})
                      .exitCode,
                  0);
        return ReadAll(out);
    };
    const std::string first = bytes("41");
    EXPECT_TRUE(first == bytes("41"));
    EXPECT_FALSE(first == bytes("42"));
}

TEST(Run, AMissingSceneIsNamed) {
    const ToolRun run = RunTool({"run", "validate_scene_hierarchy", "nowhere.qn"});
    EXPECT_EQ(run.exitCode, 3);
    EXPECT_TRUE(Contains(run.err, "nowhere.qn")) << run.err;
}

TEST(Run, PrintsTheMessagesOfTheOperation) {
    const TemporaryFolder folder;
    const std::vector<std::string> call = {"run", "internal_export_scene_metadata", kLantern,
                                           "output_file=", "output_blob_folder=" + folder.File("blobs")};
    const ToolRun run = RunTool(call);
    EXPECT_EQ(run.exitCode, 4) << run.err;
    EXPECT_TRUE(Contains(run.err, "Output file name for metadata file must be specified")) << run.err;
}

/// A path below a file: nothing can be written there, whoever asks.
std::string Unwritable(const TemporaryFolder& folder) {
    WriteAll(folder.File("file"), "");
    return folder.File("file/below");
}

TEST(Run, AnswersFourWhereAnOutputCannotBeWritten) {
    const TemporaryFolder folder;
    const std::string nowhere = Unwritable(folder), blobs = "output_blob_folder=" + folder.File("blobs");
    const std::vector<std::string> kCalls[] = {
        {"run", "internal_export_scene_metadata", kLantern, "output_file=" + nowhere, blobs},
        {"run", "internal_export_scene_metadata", kLantern, "output_file=" + folder.Path().string(), blobs},
        {"run", "internal_export_scene_metadata", kLantern, "output_file=" + folder.File("out.json"),
         "output_blob_folder=" + nowhere},
        {"run", "visual_context_extract", "source_qfxml_file=" + kLantern,
         "spatial_index_file=", "output_visual_context_query_file=" + nowhere}};
    for (const auto& call : kCalls) {
        const ToolRun run = RunTool(call);
        EXPECT_EQ(run.exitCode, 4) << call[1] << "\n" << run.err;
        EXPECT_TRUE(Contains(run.err, folder.Path().string())) << "what could not be written: " << run.err;
    }
    EXPECT_FALSE(std::filesystem::exists(folder.File("out.json")));
}

TEST(Run, AnswersThreeWhereAnOperationCannotReadAFile) {
    const TemporaryFolder folder;
    const std::string missing = folder.File("missing"), scene = folder.File("out.qn");
    const ToolRun extracted =
        RunTool({"run", "visual_context_extract", "source_qfxml_file=" + missing,
                 "spatial_index_file=", "output_visual_context_query_file=" + folder.File("query.xml")});
    EXPECT_EQ(extracted.exitCode, 3) << extracted.err;
    EXPECT_FALSE(std::filesystem::exists(folder.File("query.xml")));
    const ToolRun merged = RunTool({"run", "visual_context_merge", kLantern, "visual_context_file=" + missing,
                                    "visual_context_query_file=" + missing, "-o", scene});
    EXPECT_EQ(merged.exitCode, 3) << merged.err;
    EXPECT_FALSE(std::filesystem::exists(scene)) << "what was not done is not saved";
}

TEST(Run, ExportsMetadataOfTheTopLevelUnlessToldOtherwise) {
    const TemporaryFolder folder;
    const std::string file = folder.File("new/metadata.json");
    const std::vector<std::string> call = {"run", "14", kLantern, "output_file=" + file,
                                           "output_blob_folder=" + folder.File("blobs")};
    ASSERT_EQ(RunTool(call).exitCode, 0);
    EXPECT_EQ(json::parse(ReadAll(file))["selectors"].size(), 1u);
    std::vector<std::string> all = call;
    all.push_back("top_level_metadata_only=false");
    ASSERT_EQ(RunTool(all).exitCode, 0);
    EXPECT_EQ(json::parse(ReadAll(file))["selectors"].size(), 29u);
}

TEST(Run, BringsAVisualContextIntoAScene) {
    const TemporaryFolder folder;
    const std::string plant = folder.File("plant.qn"), query = folder.File("query.xml"),
                      merged = folder.File("merged.qn");
    ASSERT_EQ(RunTool({"run", "15", kLantern, "-o", plant, "--seed", "3"}).exitCode, 0);
    const ToolRun extracted = RunTool({"run", "visual_context_extract", "source_qfxml_file=" + plant,
                                       "spatial_index_file=", "output_visual_context_query_file=" + query});
    ASSERT_EQ(extracted.exitCode, 0) << extracted.err;
    const std::vector<std::string> merge = {"run",
                                            "visual_context_merge",
                                            plant,
                                            "visual_context_file=" + plant,
                                            "visual_context_query_file=" + query,
                                            "-o",
                                            merged};
    ASSERT_EQ(RunTool(merge).exitCode, 0);
    EXPECT_EQ(RunTool({"run", "validate_scene_hierarchy", merged}).exitCode, 0);
    EXPECT_EQ(ToolJson({"stats", "--format", "json", merged})["occurrences"], 58);
}

}  // namespace
}  // namespace assembly::tests

#include "exchange/metadata_export.h"

#include "exchange/text_blobs.h"
#include "tests/exchange/exchange_support.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace qn::test {
namespace {

using exchange::MetadataExport;
using nlohmann::json;

class MetadataExportTest : public testing::Test {
protected:
    bool Export(k3::Scene& scene, bool topLevelOnly = false) {
        return Make<MetadataExport>()->Export(&scene, file_, blobs_, topLevelOnly, context_.Get());
    }
    json Exported(k3::Scene& scene, bool topLevelOnly = false) {
        EXPECT_TRUE(Export(scene, topLevelOnly));
        return ReadJson(file_);
    }
    std::set<std::string> BlobNames() const {
        std::set<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(blobs_.ToUtf8()))
            names.insert(entry.path().filename().string());
        return names;
    }
    TempFolder folder_;
    String file_ = folder_.File("metadata.json");
    String blobs_ = folder_.File("blobs");
    Counted<RecordingContext> context_ = MakeContext();
};

TEST_F(MetadataExportTest, WritesTheTreeWithParentsByNumber) {
    const json written = Exported(*SceneOf(Car().Shape()));
    EXPECT_EQ(written["format"], "assembly-metadata");
    EXPECT_EQ(written["version"], 1);
    const json& selectors = written["selectors"];
    ASSERT_EQ(selectors.size(), 10u);
    EXPECT_TRUE(selectors[0]["parent"].is_null());
    EXPECT_EQ(selectors[1]["parent"], 0);
    EXPECT_EQ(selectors[2]["name"], "wheel");
    EXPECT_EQ(selectors[3]["name"], "tyre");
    EXPECT_EQ(selectors[3]["parent"], 2);
    EXPECT_EQ(selectors[4]["parent"], 0);
}

TEST_F(MetadataExportTest, WritesIdsAndMetadataOfEveryLevel) {
    const auto scene = SceneOf(Car().Shape());
    scene->SetMetadata(Metadata(L"Scene", L"a", Var(1)).Get());
    k3::Node* chassis = FindNode(*scene, "chassis");
    chassis->SetMetadata(Metadata(L"Selector", L"b", Var(L"two")).Get());
    chassis->SetParamVar(Param::kExternalIds, Var(Metadata(L"PLM", L"id", Var(L"X-1"))));
    auto* instance = Cast<graph::Instance>(chassis->GetParamObject(Param::kInstance));
    instance->SetProperty(graph::Prop::kMetadata, Var(Metadata(L"Node", L"c", Var(3.5))));
    instance->GetReference()->SetProperty(graph::Prop::kMetadata, Var(Metadata(L"Entity", L"d", Var(true))));

    const json written = Exported(*scene);
    EXPECT_EQ(written["scene"]["metadata"]["Scene"]["a"], 1);
    const json& selector = written["selectors"][1];
    EXPECT_EQ(selector["bs_id"], "s:chassis.1");
    EXPECT_EQ(selector["metadata"]["Selector"]["b"], "two");
    EXPECT_EQ(selector["external_ids"]["PLM"]["id"], "X-1");
    const json& node = written["nodes"][selector["node"].get<std::size_t>()];
    EXPECT_EQ(node["bs_id"], "n:chassis.1");
    EXPECT_EQ(node["metadata"]["Node"]["c"], 3.5);
    const json& entity = written["entities"][node["entity"].get<std::size_t>()];
    EXPECT_EQ(entity["bs_id"], "e:chassis");
    EXPECT_EQ(entity["name"], "chassis");
    EXPECT_EQ(entity["metadata"]["Entity"]["d"], true);
}

TEST_F(MetadataExportTest, WritesSharedElementsOnce) {
    const json written = Exported(*SceneOf(Car().Shape()));
    EXPECT_EQ(written["nodes"].size(), 7u);
    EXPECT_EQ(written["entities"].size(), 4u);
}

TEST_F(MetadataExportTest, WritesTopLevelNodesAloneWhereAsked) {
    const json written = Exported(*SceneOf(Car().Shape()), true);
    EXPECT_EQ(written["top_level_only"], true);
    ASSERT_EQ(written["selectors"].size(), 1u);
    EXPECT_EQ(written["selectors"][0]["name"], "car");
    EXPECT_EQ(written["nodes"].size(), 1u);
    EXPECT_EQ(written["entities"].size(), 1u);
}

TEST_F(MetadataExportTest, LeavesOutWhatIsNotThere) {
    const auto scene = Make<k3::Scene>();
    scene->CreateEmptyNode(0, 0, 0)->SetName(L"plain");
    const json selector = Exported(*scene)["selectors"][0];
    EXPECT_EQ(selector, json::parse(R"({"number": 0, "parent": null, "name": "plain"})"));
}

TEST_F(MetadataExportTest, PutsLongTextsIntoFilesNamedByTheirContent) {
    const auto scene = SceneOf(Car().Shape());
    const std::wstring text(1000, L'ö');
    for (const char* name : {"car", "chassis"})
        FindNode(*scene, name)->SetMetadata(Metadata(L"Notes", L"text", Var(String(text))).Get());
    const json written = Exported(*scene);
    const json first = written["selectors"][0]["metadata"]["Notes"]["text"];
    EXPECT_EQ(first, written["selectors"][1]["metadata"]["Notes"]["text"]);
    EXPECT_EQ(first["bytes"], 2000);
    const std::string name = first["$blob"];
    EXPECT_EQ(BlobNames(), std::set<std::string>{name});
    EXPECT_EQ(ReadBytes(std::filesystem::path(blobs_.ToUtf8()) / name), String(text).ToUtf8());
    EXPECT_EQ(Exported(*scene), written) << "a second export";
    EXPECT_EQ(BlobNames().size(), 1u);
}

TEST_F(MetadataExportTest, RepairsABlobThatWasDamaged) {
    const auto scene = SceneOf(Car().Shape());
    const String text(std::wstring(1000, L'x'));
    scene->SetMetadata(Metadata(L"Notes", L"text", Var(text)).Get());
    const std::string name = Exported(*scene)["scene"]["metadata"]["Notes"]["text"]["$blob"];
    const String blob = blobs_ + L"/" + String::FromUtf8(name);
    folder_.Write("blobs/" + name, "damaged");
    ASSERT_TRUE(Export(*scene));
    EXPECT_EQ(ReadBytes(blob.ToUtf8()), text.ToUtf8());
}

TEST_F(MetadataExportTest, WritesTheSameBytesForTheSameScene) {
    Exported(*SceneOf(Car().Shape()));
    const std::string first = ReadBytes(file_.ToUtf8());
    Exported(*SceneOf(Car().Shape()));
    EXPECT_EQ(ReadBytes(file_.ToUtf8()), first);
}

TEST_F(MetadataExportTest, AnswersFalseWithoutAWordWhereANameIsMissing) {
    const auto scene = SceneOf(Car().Shape());
    const auto exporter = Make<MetadataExport>();
    EXPECT_FALSE(exporter->Export(scene.Get(), String(), blobs_, false, context_.Get()));
    EXPECT_FALSE(exporter->Export(scene.Get(), file_, String(), false, context_.Get()));
    EXPECT_FALSE(exporter->Export(nullptr, file_, blobs_, false, context_.Get()));
    EXPECT_TRUE(context_->Texts().empty());
    EXPECT_FALSE(HasFile(file_));
}

TEST_F(MetadataExportTest, TellsWhatCannotBeWritten) {
    folder_.Write("blocked", "a file");
    file_ = folder_.File("blocked/metadata.json");
    EXPECT_FALSE(Export(*SceneOf(Car().Shape())));
    ASSERT_FALSE(context_->Texts().empty());
    EXPECT_NE(context_->Texts()[0].find("blocked"), std::string::npos);
}

TEST_F(MetadataExportTest, WritesNoDocumentIfABlobCannotBeWritten) {
    const auto scene = SceneOf(Car().Shape());
    scene->SetMetadata(Metadata(L"Notes", L"text", Var(String(std::wstring(1000, L'x')))).Get());
    blobs_ = folder_.Write("blobs", "a file in the folder's place");
    EXPECT_FALSE(Export(*scene));
    EXPECT_FALSE(HasFile(file_));
}

TEST_F(MetadataExportTest, NeedsNoContext) {
    const auto scene = SceneOf(Car().Shape());
    EXPECT_TRUE(Make<MetadataExport>()->Export(scene.Get(), file_, blobs_, false, nullptr));
}

TEST_F(MetadataExportTest, WritesTenThousandLevels) {
    const json written = Exported(*SceneOf(DeepShape(10'000)));
    ASSERT_EQ(written["selectors"].size(), 10'000u);
    EXPECT_EQ(written["selectors"][9'999]["parent"], 9'998);
}

TEST_F(MetadataExportTest, IsKnownByItsKey) {
    const auto object = Make<MetadataExport>();
    EXPECT_TRUE(object->IsTypeOf("QN.QfXml.BrineServerMetadataExport"));
    EXPECT_NE(Cast<qfxml::BrineServerMetadataExport>(static_cast<Interface*>(object.Get())), nullptr);
}

}  // namespace
}  // namespace qn::test

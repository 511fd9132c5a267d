#include "engine/import/importer_registry.h"

#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace qn {
namespace {

using test::TempFolder;

constexpr const char* kAlphaId = "00000000-0000-0000-0000-00000000000a";

class ImporterRegistryTest : public testing::Test {
protected:
    ImporterRegistryTest() {
        folder_.Write("b_beta.importer", "key=beta\nmodule=b.so\nname=Beta\nendings=.b .bb\nmagic=BETA");
        folder_.Write(
            "a_alpha.importer",
            std::string("key=alpha\nmodule=a.so\nname=Alpha\nendings=.a\nmagic=ALPHA\nguid=") + kAlphaId);
        folder_.Write("c_gamma.importer", "key=gamma\nmodule=c.so\nname=Gamma\nendings=.c\nmagic=BETA");
        folder_.Write("notes.txt", "not a record");
        registry_.ReadFolder(folder_.Path().string());
    }
    std::string Choose(std::string_view head, std::string_view name, const char* guid = "") {
        Guid id;
        Guid::Parse(String::FromUtf8(guid), id);
        const ImporterRecord* record = registry_.Choose(id, head, name);
        return record ? record->key : "none";
    }
    TempFolder folder_;
    ImporterRegistry registry_;
};

TEST_F(ImporterRegistryTest, ReadsRecordsInTheOrderOfTheirFiles) {
    const auto records = registry_.GetRecords();
    ASSERT_EQ(records.size(), 3u);
    EXPECT_EQ(records[0]->key, "alpha");
    EXPECT_EQ(records[2]->key, "gamma");
    EXPECT_TRUE(registry_.GetProblems().empty());
}

TEST_F(ImporterRegistryTest, ChoosesByIdBeforeAllElse) {
    EXPECT_EQ(Choose("BETA", "x.b", kAlphaId), "alpha");
}

TEST_F(ImporterRegistryTest, ChoosesByContentBeforeTheEnding) {
    EXPECT_EQ(Choose("ALPHA", "x.b"), "alpha");
}

TEST_F(ImporterRegistryTest, LetsTheEndingDecideAmongSeveralThatKnowTheContent) {
    EXPECT_EQ(Choose("BETA", "x.c"), "gamma");
    EXPECT_EQ(Choose("BETA", "x.unknown"), "beta");
}

TEST_F(ImporterRegistryTest, ChoosesByEndingWhenNobodyKnowsTheContent) {
    EXPECT_EQ(Choose("what", "X.BB"), "beta");
}

TEST_F(ImporterRegistryTest, GoesOnWithTheContentWhenNobodyHasTheId) {
    EXPECT_EQ(Choose("ALPHA", "x", "00000000-0000-0000-0000-00000000000b"), "alpha");
}

TEST_F(ImporterRegistryTest, ChoosesNobodyForAnUnknownFormat) {
    EXPECT_EQ(Choose("what", "x.txt"), "none");
}

TEST_F(ImporterRegistryTest, NamesFormatsWithTheirEndings) {
    EXPECT_EQ(registry_.Describe().ToUtf8(), "Alpha (.a), Beta (.b .bb), Gamma (.c)");
}

TEST_F(ImporterRegistryTest, PassesOverADamagedRecordAndTellsIt) {
    folder_.Write("b_beta.importer", "nonsense");
    registry_.ReadFolder(folder_.Path().string());
    EXPECT_EQ(registry_.GetRecords().size(), 2u);
    ASSERT_EQ(registry_.GetProblems().size(), 1u);
    EXPECT_EQ(registry_.GetProblems()[0].ToUtf8(), "b_beta.importer: line 1 cannot be read");
}

TEST_F(ImporterRegistryTest, KeepsBuiltInImportersWhenAFolderIsReadAgain) {
    ImporterRecord scene;
    scene.key = "scene";
    registry_.AddBuiltIn(scene);
    registry_.ReadFolder("/no/such/folder");
    ASSERT_EQ(registry_.GetRecords().size(), 1u);
    EXPECT_EQ(registry_.GetRecords()[0]->key, "scene");
}

TEST(Importers, KnowTheEnginesOwnSceneFiles) {
    const ImporterRecord* record = Importers().Choose(Guid(), "", "saved.QN");
    ASSERT_NE(record, nullptr);
    EXPECT_TRUE(record->modulePath.empty());
}

}  // namespace
}  // namespace qn

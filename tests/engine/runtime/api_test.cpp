#include "engine/runtime/api_impl.h"

#include "engine/runtime/engine.h"
#include "engine/runtime/session.h"
#include "frame/host/scene.h"
#include "tests/support/recording_platform.h"
#include "tests/support/static_module.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace qn {
namespace {

using test::RecordingPlatform;
using test::StaticModule;
using test::TempFolder;

constexpr int kDocuments = 2;

TEST(Api, IsThereAsSoonAsTheEngineIsLoaded) {
    ASSERT_NE(api, nullptr);
    EXPECT_EQ(&StartEngine(), api);
}

TEST(Api, MakesEveryEngineClassUnderItsKeyInAnyCase) {
    const char* const keys[] = {
        "qnxmldocument", "k3_scene",          "k3_node",         "k3_layer",
        "k3_viewport",   "k3_mesh",           "k3_material",     "k3_generic",
        "k3_object3d",   "k3_varmap",         "k3_vararray",     "k3_materialsubstitution",
        "k3_params",     "k3_interfacearray", "k3_pointerarray", "k3_collection",
        "K3_Node",       "QN.K3.ENTITY",      "k3_detail_markup"};
    for (const char* key : keys) {
        const auto object = api->Create(key);
        ASSERT_TRUE(object) << key;
        EXPECT_TRUE(EqualKeys(object->GetInterfaceName(), key)) << object->GetInterfaceName();
        EXPECT_EQ(object->GetRefCount(), 1) << key;
    }
}

TEST(Api, MakesNothingForAnUnknownKeyOrNone) {
    EXPECT_FALSE(api->Create("qn.no.such.class"));
    EXPECT_FALSE(api->Create(""));
    EXPECT_FALSE(api->Create(nullptr));
}

TEST(Api, AsksTheModuleThatRegisteredTheKey) {
    const StaticModule module({{"test.array", &MakeOf<VarArray>}});
    const auto object = api->Create("TEST.Array");
    ASSERT_TRUE(object);
    EXPECT_NE(Cast<VarArray>(object.Get()), nullptr);
    EXPECT_EQ(object->GetRefCount(), 1);
}

TEST(Api, PrefersAModulesClassToItsOwnOfTheSameKey) {
    const StaticModule module({{"k3_node", &MakeOf<VarArray>}});
    EXPECT_NE(Cast<VarArray>(api->Create("k3_node").Get()), nullptr);
}

TEST(Api, ForgetsTheClassesOfAModuleThatWasRemoved) {
    { const StaticModule module({{"test.array", &MakeOf<VarArray>}}); }
    EXPECT_FALSE(api->Create("test.array"));
}

TEST(Api, RefusesToRegisterAClassWithoutKey) {
    const std::size_t before = Modules().Extensions().size();
    EXPECT_FALSE(api->RegisterExtension(nullptr, nullptr, 0, L"x"));
    EXPECT_FALSE(api->RegisterExtension(nullptr, "", 0, L"x"));
    EXPECT_EQ(Modules().Extensions().size(), before);
}

TEST(Api, CastsWhatItCreates) {
    EXPECT_TRUE(CreateAs<VarMap>("k3_varmap"));
    EXPECT_FALSE(CreateAs<VarArray>("k3_varmap"));
}

TEST(Api, MakesContextsThatTheCallerOwns) {
    const auto context = api->CreateContext(1, 0);
    ASSERT_TRUE(context);
    EXPECT_EQ(context->GetRefCount(), 1);
}

TEST(Api, MakesCollectionsThatTheCallerOwns) {
    EXPECT_EQ(api->CreateCollection()->GetRefCount(), 1);
}

TEST(Api, ShowsBoxesThroughThePlatform) {
    RecordingPlatform platform;
    platform.answer = 7;
    EXPECT_EQ(api->ShowMessageBox(nullptr, L"text", L"caption", 0x2030), 7);
    ASSERT_EQ(platform.boxes.size(), 1u);
    EXPECT_EQ(platform.boxes[0].caption, String(L"caption"));
    EXPECT_EQ(platform.boxes[0].flags, 0x2030u);
}

TEST(Api, GivesTheTemporaryFolderForAnUnsetSpecialFolder) {
    RecordingPlatform platform;
    platform.temporaryFolder = L"/somewhere/";
    wchar_t buffer[260] = L"";
    EXPECT_TRUE(api->GetSpecialFolder(kDocuments, buffer, 260));
    EXPECT_STREQ(buffer, L"/somewhere/");
}

class SessionTest : public testing::Test {
protected:
    SessionTest() : kept_(GetSession()) {}
    ~SessionTest() override { GetSession() = kept_; }

private:
    Session kept_;
};

TEST_F(SessionTest, StartsWithAnEmptyMapForTheModules) {
    VarMap* data = api->GetPcoreSessionUserData();
    ASSERT_NE(data, nullptr);
    EXPECT_EQ(data->GetCount(), 0);
}

TEST_F(SessionTest, MayHaveNoUserData) {
    GetSession().userData.Reset();
    EXPECT_EQ(api->GetPcoreSessionUserData(), nullptr);
}

TEST_F(SessionTest, NamesTheProduct) {
    GetSession().productName = L"Workbench";
    EXPECT_EQ(api->GetProductName(), String(L"Workbench"));
}

TEST_F(SessionTest, HasNoDocumentPathBeforeTheFirstSave) {
    wchar_t buffer[8] = L"rest";
    EXPECT_FALSE(api->GetDocumentPath(buffer, 8));
    EXPECT_STREQ(buffer, L"");
}

TEST_F(SessionTest, CutsTheDocumentPathToTheBuffer) {
    GetSession().documentPath = L"/a/long.qn";
    wchar_t buffer[5] = L"";
    EXPECT_TRUE(api->GetDocumentPath(buffer, 5));
    EXPECT_STREQ(buffer, L"/a/l");
}

TEST_F(SessionTest, LendsTheMainWindow) {
    EXPECT_EQ(api->GetMainWindow(0), nullptr);
    int window = 0;
    GetSession().mainWindow = &window;
    EXPECT_EQ(api->GetMainWindow(0), &window);
}

TEST_F(SessionTest, ChoosesSpecialFoldersByKind) {
    GetSession().specialFolders[kDocuments] = L"/documents";
    wchar_t buffer[260] = L"";
    EXPECT_TRUE(api->GetSpecialFolder(kDocuments, buffer, 260));
    EXPECT_STREQ(buffer, L"/documents");
}

TEST(Api, OpensAFileForReadingWhateverTheModule) {
    const TempFolder folder;
    int module = 0;
    const auto stream = api->CreateStream(&module, folder.Write("größe.bin", "abc").c_str(), 0x101);
    ASSERT_TRUE(stream);
    EXPECT_EQ(stream->Remaining(), 3u);
    EXPECT_FALSE(api->CreateStream(&module, folder.File("none").c_str(), 0x101));
    EXPECT_FALSE(api->CreateStream(&module, nullptr, 0x101));
}

}  // namespace
}  // namespace qn

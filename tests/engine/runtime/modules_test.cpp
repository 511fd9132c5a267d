#include "engine/runtime/modules.h"

#include "engine/runtime/engine.h"
#include "engine/runtime/module_folder.h"
#include "frame/host/scene.h"
#include "tests/support/static_module.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace qn {
namespace {

using test::FakeModule;
using test::TempFolder;

TEST(LoadModule, LoadsAModuleOnceUnderAllItsNames) {
    ASSERT_TRUE(StartEngineWithAssembly());
    const std::size_t modules = Modules().Modules().size();
    const std::size_t classes = Modules().Extensions().size();
    const TempFolder folder;
    std::filesystem::create_symlink(ASSEMBLY_LIB_DIR "/assembly.so", folder.Path() / "other.so");
    EXPECT_TRUE(api->LoadModule(folder.File("other.so")));
    EXPECT_EQ(Modules().Modules().size(), modules);
    EXPECT_EQ(Modules().Extensions().size(), classes);
}

TEST(LoadModule, MakesTheModulesClassesAvailable) {
    ASSERT_TRUE(StartEngineWithAssembly());
    EXPECT_TRUE(api->Create("qn.graph.instance"));
    EXPECT_FALSE(api->Create("qn.graph.resolvercache"));
}

TEST(LoadModule, TellsThatThereIsNoSuchModuleWithoutNamingTheFolder) {
    String reason;
    EXPECT_FALSE(api->LoadModule(L"/no/such/module.so", &reason));
    EXPECT_EQ(reason, String(L"module.so: no such module"));
    EXPECT_FALSE(api->LoadModule(L"nothing.so"));
}

TEST(LoadModule, TellsWhyAFileIsNoLibrary) {
    const TempFolder folder;
    String reason;
    EXPECT_FALSE(api->LoadModule(folder.Write("text.so", "no library"), &reason));
    EXPECT_EQ(reason.ToUtf8().rfind("text.so: ", 0), 0u) << reason.ToUtf8();
    EXPECT_EQ(reason.ToUtf8().find(folder.Path().string()), std::string::npos) << reason.ToUtf8();
}

TEST(LoadModule, RefusesALibraryWithoutEntryFunction) {
    String reason;
    EXPECT_FALSE(api->LoadModule(L"libpcore.so", &reason));
    EXPECT_NE(reason.ToUtf8().find("K3DLLFunc"), std::string::npos);
}

TEST(PostLoadHooks, PassTheSceneAndWhetherItWasMerged) {
    const FakeModule module;
    const auto scene = Make<k3::Scene>();
    RunPostLoadHooks(scene.Get(), false);
    RunPostLoadHooks(scene.Get(), true);
    ASSERT_EQ(module.Count(ModuleCode::kPostLoad), 2);
    EXPECT_EQ(module.Calls()[1].first, scene.Get());
    EXPECT_EQ(module.Calls()[1].second, nullptr);
    EXPECT_NE(module.Calls()[2].second, nullptr);
}

class ModuleFolderTest : public testing::Test {
protected:
    ~ModuleFolderTest() override {
        SetModuleFolder(String());
        unsetenv("ASSEMBLY_MODULES");
    }
};

TEST_F(ModuleFolderTest, IsThatOfTheEnginesLibrary) {
    EXPECT_TRUE(std::filesystem::equivalent(ModuleFolder().ToUtf8(), ASSEMBLY_LIB_DIR));
}

TEST_F(ModuleFolderTest, IsTheOneOfTheEnvironment) {
    setenv("ASSEMBLY_MODULES", "/from/environment", 1);
    EXPECT_EQ(ModuleFolder(), String(L"/from/environment"));
}

TEST_F(ModuleFolderTest, IsTheOneThatWasSetBeforeAllOthers) {
    setenv("ASSEMBLY_MODULES", "/from/environment", 1);
    SetModuleFolder(L"/set");
    EXPECT_EQ(ModuleFolder(), String(L"/set"));
}

}  // namespace
}  // namespace qn

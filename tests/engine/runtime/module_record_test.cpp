#include "engine/runtime/module_record.h"

#include "engine/runtime/module_folder.h"
#include "frame/host/api.h"
#include "tests/support/static_module.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace qn {
namespace {

using test::TempFolder;

/// The reason for which a record is refused, empty if it is not.
std::string Refusal(const char* text) {
    ModuleRecord record;
    String reason;
    return ParseModuleRecord(text, "/mods", record, reason) ? std::string() : reason.ToUtf8();
}

TEST(ModuleRecord, NamesALibraryBesideItAndItsClasses) {
    ModuleRecord record;
    String reason;
    ASSERT_TRUE(ParseModuleRecord("# what it is\nmodule = a.so\r\n\nclass = k.one\nclass=k.two", "/mods",
                                  record, reason));
    EXPECT_EQ(record.modulePath, "/mods/a.so");
    EXPECT_EQ(record.classes, (std::vector<std::string>{"k.one", "k.two"}));
}

TEST(ModuleRecord, IsRefusedWithTheLine) {
    EXPECT_EQ(Refusal("module = a.so\nclass"), "line 2 cannot be read");
    EXPECT_EQ(Refusal("class = \n"), "line 1 cannot be read");
    EXPECT_EQ(Refusal("colour = red"), "line 1 cannot be read");
    EXPECT_EQ(Refusal("module = a.so\nmodule = b.so\nclass = k"), "line 2 cannot be read");
}

TEST(ModuleRecord, IsRefusedIfItLeavesItsFolder) {
    EXPECT_EQ(Refusal("module = ../a.so\nclass = k"), "line 1 cannot be read");
    EXPECT_EQ(Refusal("module = /tmp/a.so\nclass = k"), "line 1 cannot be read");
}

TEST(ModuleRecord, NeedsAModuleAndAClass) {
    EXPECT_EQ(Refusal("module = a.so"), "no class or no module");
    EXPECT_EQ(Refusal("class = k"), "no class or no module");
}

TEST(ModuleRecords, FindTheFirstModuleOfAClassInAnyCase) {
    TempFolder folder;
    folder.Write("b.module", "module = b.so\nclass = k.shared\nclass = k.b");
    folder.Write("a.module", "module = a.so\nclass = k.shared");
    folder.Write("c.module", "nonsense");
    folder.Write("d.importer", "module = d.so\nclass = k.d");
    ModuleRecords records;
    records.ReadFolder(folder.Path().string());
    ASSERT_NE(records.Find("K.Shared"), nullptr);
    EXPECT_EQ(records.Find("K.Shared")->modulePath, folder.Path().string() + "/a.so");
    EXPECT_EQ(records.Find("k.b")->modulePath, folder.Path().string() + "/b.so");
    EXPECT_EQ(records.Find("k.d"), nullptr);
    ASSERT_EQ(records.GetProblems().size(), 1u);
    EXPECT_EQ(records.GetProblems()[0], String(L"c.module: line 1 cannot be read"));
}

TEST(ModuleRecords, AreNoneInAMissingFolder) {
    ModuleRecords records;
    records.ReadFolder("/no/such/folder");
    EXPECT_EQ(records.Find("k"), nullptr);
    EXPECT_TRUE(records.GetProblems().empty());
}

TEST(ModuleRecords, GiveNoObjectIfTheModuleIsMissing) {
    TempFolder folder;
    folder.Write("a.module", "module = a.so\nclass = k.missing");
    const String before = ModuleFolder();
    SetModuleFolder(String::FromUtf8(folder.Path().string()));
    EXPECT_FALSE(api->Create("k.missing"));
    SetModuleFolder(String());
    EXPECT_EQ(ModuleFolder(), before);
}

Interface* MakeNothing() {
    return nullptr;
}

TEST(ModuleRecords, DoNotCountForAClassThatALoadedModuleRefusesToMake) {
    const test::StaticModule module({{"qn.qfxml.mbomexporter", &MakeNothing}});
    EXPECT_FALSE(api->Create("qn.qfxml.mbomexporter"));
}

}  // namespace
}  // namespace qn

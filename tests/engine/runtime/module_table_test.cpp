#include "engine/runtime/module_table.h"

#include "engine/runtime/class_table.h"
#include "frame/host/collections.h"

#include <gtest/gtest.h>

namespace qn {
namespace {

ModuleTable* g_table = nullptr;
int g_asked = 0;

std::uintptr_t Registering(unsigned code, void*, void* second) {
    if (code != ModuleCode::kRegister) return 0;
    g_table->AddExtension({second, "test.one", 0x10000000, L"One"});
    g_table->AddExtension({second, "test.two", 0, L"Two"});
    return 1;
}

std::uintptr_t Refusing(unsigned code, void* first, void* second) {
    Registering(code, first, second);
    return 0;
}

std::uintptr_t Barren(unsigned code, void*, void*) {
    if (code == ModuleCode::kCreate) ++g_asked;
    return code == ModuleCode::kRegister ? 1 : 0;
}

std::uintptr_t MakingMaps(unsigned code, void*, void*) {
    if (code != ModuleCode::kCreate) return 1;
    ++g_asked;
    return reinterpret_cast<std::uintptr_t>(MakeOf<VarMap>());
}

class ModuleTableTest : public testing::Test {
protected:
    ModuleTableTest() {
        g_table = &table_;
        g_asked = 0;
    }
    ModuleHandle First() { return &first_; }
    ModuleHandle Second() { return &second_; }
    ModuleTable table_;

private:
    int first_ = 0, second_ = 0;
};

TEST_F(ModuleTableTest, HasAModuleRegisterItsClassesUnderItsHandle) {
    ASSERT_TRUE(table_.Add({First(), &Registering, L"one.so"}));
    ASSERT_EQ(table_.Extensions().size(), 2u);
    EXPECT_EQ(table_.Extensions()[0].handle, First());
    EXPECT_EQ(table_.Extensions()[0].key, "test.one");
    EXPECT_EQ(table_.Extensions()[0].value, 0x10000000u);
    EXPECT_EQ(table_.Extensions()[1].displayName, String(L"Two"));
}

TEST_F(ModuleTableTest, KeepsAClassTwiceThatWasRegisteredTwice) {
    ASSERT_TRUE(table_.Add({First(), &Registering, String()}));
    Registering(ModuleCode::kRegister, nullptr, First());
    EXPECT_EQ(table_.Extensions().size(), 4u);
}

TEST_F(ModuleTableTest, KeepsAHandleOnce) {
    ASSERT_TRUE(table_.Add({First(), &Barren, String()}));
    EXPECT_FALSE(table_.Add({First(), &Registering, String()}));
    EXPECT_EQ(table_.Modules().size(), 1u);
    EXPECT_TRUE(table_.Extensions().empty());
}

TEST_F(ModuleTableTest, KeepsNothingOfAModuleThatRefuses) {
    EXPECT_FALSE(table_.Add({First(), &Refusing, String()}));
    EXPECT_FALSE(table_.Add({Second(), nullptr, String()}));
    EXPECT_TRUE(table_.Modules().empty());
    EXPECT_TRUE(table_.Extensions().empty());
}

TEST_F(ModuleTableTest, AsksNobodyForAKeyThatNobodyRegistered) {
    ASSERT_TRUE(table_.Add({First(), &MakingMaps, String()}));
    EXPECT_FALSE(table_.Create("test.one"));
    EXPECT_EQ(g_asked, 0);
}

TEST_F(ModuleTableTest, GoesOnToTheNextModuleWhenOneMakesNothing) {
    ASSERT_TRUE(table_.Add({First(), &Barren, String()}));
    ASSERT_TRUE(table_.Add({Second(), &MakingMaps, String()}));
    table_.AddExtension({First(), "test.map", 0, String()});
    table_.AddExtension({Second(), "Test.Map", 0, String()});
    EXPECT_TRUE(table_.Create("tEST.mAP"));
    EXPECT_EQ(g_asked, 2);
}

TEST_F(ModuleTableTest, PassesOverRowsWhoseModuleIsUnknown) {
    table_.AddExtension({First(), "test.map", 0, String()});
    EXPECT_FALSE(table_.Create("test.map"));
}

TEST_F(ModuleTableTest, RemovesAModuleWithItsClassesAndNoOthers) {
    ASSERT_TRUE(table_.Add({First(), &MakingMaps, String()}));
    ASSERT_TRUE(table_.Add({Second(), &MakingMaps, String()}));
    table_.AddExtension({First(), "test.first", 0, String()});
    table_.AddExtension({Second(), "test.second", 0, String()});
    table_.Remove(First());
    EXPECT_EQ(table_.Find(First()), nullptr);
    EXPECT_FALSE(table_.Create("test.first"));
    EXPECT_TRUE(table_.Create("test.second"));
}

}  // namespace
}  // namespace qn

#include "engine/runtime/resources.h"
#include "frame/catalogue.h"
#include "frame/entry.h"
#include "frame/host/module_code.h"
#include "frame/host/translate.h"
#include "frame/module.h"
#include "operations/description.h"
#include "tests/support/inert_api.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qn::test {
namespace {

/// Remembers what the module looked like when it was refused.
class RefusingApi final : public InertApi {
public:
    struct Asked {
        std::string key;
        ModuleHandle given, stored;
    };

    bool RegisterExtension(ModuleHandle handle, const char* key, unsigned, const String&) override {
        asked.push_back({key, handle, frame::GetModuleHandle()});
        return false;
    }

    std::vector<Asked> asked;
};

class RefusedRegistration : public testing::Test {
protected:
    RefusedRegistration() { frame::SetModuleHandle(nullptr); }
    ~RefusedRegistration() override {
        RemoveResource(Handle(), graph::kDescriptionResource);
        frame::SetModuleHandle(nullptr);
    }

    ModuleHandle Handle() { return this; }
    std::uintptr_t Register() { return K3DLLFunc(ModuleCode::kRegister, nullptr, Handle()); }

    RefusingApi host_;
};

TEST_F(RefusedRegistration, OfOneClassStopsNoOther) {
    EXPECT_EQ(Register(), 1u);
    ASSERT_EQ(host_.asked.size(), frame::Catalogue().size());
    for (std::size_t i = 0; i < host_.asked.size(); ++i)
        EXPECT_EQ(host_.asked[i].key, frame::Catalogue()[i].key);
}

TEST_F(RefusedRegistration, FindsTheHandleStoredFromTheFirstClassOn) {
    Register();
    ASSERT_FALSE(host_.asked.empty());
    for (const RefusingApi::Asked& asked : host_.asked) {
        EXPECT_EQ(asked.given, Handle());
        EXPECT_EQ(asked.stored, Handle());
    }
}

ModuleHandle g_storedAtFirstName = nullptr;
int g_names = 0;

String NoteHandle(const char*, const char* source, const char*) {
    if (g_names++ == 0) g_storedAtFirstName = frame::GetModuleHandle();
    return String::FromUtf8(source);
}

TEST_F(RefusedRegistration, FindsTheHandleStoredWhenTheFirstNameIsTranslated) {
    g_names = 0;
    SetTranslateHook(&NoteHandle);
    Register();
    SetTranslateHook(nullptr);
    EXPECT_EQ(g_storedAtFirstName, Handle());
    EXPECT_EQ(g_names, static_cast<int>(frame::Catalogue().size()));
}

}  // namespace
}  // namespace qn::test

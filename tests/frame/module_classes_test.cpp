#include "frame/host/module_classes.h"

#include "tests/support/inert_api.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace qn::test {
namespace {

Counted<Interface> MakeNothing() {
    return nullptr;
}
Counted<Interface> Throw() {
    throw std::runtime_error("no");
}
constexpr ModuleClass kClasses[] = {
    {"test.map", L"Map", &MakeOne<VarMap>},
    {"test.nothing", L"Nothing", &MakeNothing},
    {"test.thrower", L"Thrower", &Throw},
};

/// Takes the classes that it is asked to take, and writes all down.
class NotingApi final : public InertApi {
public:
    explicit NotingApi(const char* refused) : refused_(refused) {}
    bool RegisterExtension(ModuleHandle handle, const char* key, unsigned value,
                           const String& name) override {
        noted += std::string(key) + "=" + name.ToUtf8() + (value ? "?" : "") + (handle == this ? " " : "! ");
        return key != std::string(refused_);
    }
    std::string noted;

private:
    const char* refused_;
};

std::uintptr_t Ask(unsigned code, const char* first = nullptr, void* second = nullptr) {
    return AnswerHost(kClasses, code, const_cast<char*>(first), second);
}

TEST(ModuleClasses, AreRegisteredInTheirOrder) {
    NotingApi host("");
    EXPECT_EQ(Ask(ModuleCode::kRegister, nullptr, &host), 1u);
    EXPECT_EQ(host.noted, "test.map=Map test.nothing=Nothing test.thrower=Thrower ");
}

TEST(ModuleClasses, StopAtTheFirstThatTheHostRefuses) {
    NotingApi host("test.nothing");
    EXPECT_EQ(Ask(ModuleCode::kRegister, nullptr, &host), 0u);
    EXPECT_EQ(host.noted, "test.map=Map test.nothing=Nothing ");
}

TEST(ModuleClasses, AreMadeByTheirKeysInAnyCaseWithOneCount) {
    const auto made = reinterpret_cast<Interface*>(Ask(ModuleCode::kCreate, "TEST.Map"));
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->AddRef(), 2);
    made->Release();
    made->Release();
}

TEST(ModuleClasses, AnswerNothingForWhatTheyDoNotKnowOrCannotMake) {
    for (const char* const key : {"test.other", "test.nothing", "test.thrower", ""})
        EXPECT_EQ(Ask(ModuleCode::kCreate, key), 0u) << key;
    EXPECT_EQ(Ask(ModuleCode::kCreate, nullptr), 0u);
    EXPECT_EQ(Ask(ModuleCode::kPostLoad), 0u);
}

TEST(ModuleClasses, TellTheVersionOfTheContract) {
    EXPECT_EQ(Ask(ModuleCode::kInterfaceVersion), 0x910u);
}

}  // namespace
}  // namespace qn::test

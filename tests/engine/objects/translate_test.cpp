#include "frame/host/translate.h"

#include <gtest/gtest.h>

namespace qn {
namespace {

TEST(Translate, GivesTheSourceTextWithoutAHook) {
    EXPECT_EQ(Translate("assembly",
                        "Gr\xc3\xb6\xc3\x9f"
                        "e",
                        "XCAP: message box title", -1),
              String(L"Gr\x00f6\x00df"
                     L"e"));
    EXPECT_EQ(Translate("assembly", "text", nullptr, -1), String(L"text"));
    EXPECT_EQ(Translate("assembly", "text", nullptr, 2), String(L"te"));
    EXPECT_EQ(Translate("assembly", nullptr, nullptr, -1), String());
}

TEST(Translate, AsksTheHook) {
    SetTranslateHook([](const char* catalogue, const char* source, const char* kind) {
        return String::FromUtf8(std::string(catalogue) + "|" + source + "|" + (kind ? kind : "-"));
    });
    EXPECT_EQ(Translate("SceneMerge", "Error", "XMSG", 3), String(L"SceneMerge|Err|XMSG"));
    EXPECT_EQ(Translate("SceneMerge", "Error", nullptr, -1), String(L"SceneMerge|Error|-"));
    SetTranslateHook(nullptr);
    EXPECT_EQ(Translate("SceneMerge", "Error", nullptr, -1), String(L"Error"));
}

}  // namespace
}  // namespace qn

#include "engine/import/importer_record.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qn {
namespace {

using testing::ElementsAre;

constexpr const char* kRecord = R"(# a comment
key = qn.importer.step
module = step_importer.so
guid = 01020304-0506-0708-090a-0b0c0d0e0f10
name = STEP größe

endings = .stp .STEP
magic = ISO-10303-21;
magic = other = text
)";

ImporterRecord Parsed(std::string_view text) {
    ImporterRecord record;
    String reason;
    EXPECT_TRUE(ParseImporterRecord(text, "/modules", record, reason)) << reason.ToUtf8();
    return record;
}

TEST(ImporterRecord, IsReadFromItsText) {
    const ImporterRecord record = Parsed(kRecord);
    EXPECT_EQ(record.key, "qn.importer.step");
    EXPECT_EQ(record.modulePath, "/modules/step_importer.so");
    EXPECT_EQ(record.guid.ToText(), String(L"01020304-0506-0708-090a-0b0c0d0e0f10"));
    EXPECT_EQ(record.name.ToUtf8(), "STEP größe");
    EXPECT_THAT(record.endings, ElementsAre(".stp", ".step"));
    EXPECT_THAT(record.magics, ElementsAre("ISO-10303-21;", "other = text"));
}

TEST(ImporterRecord, NeedsNoMoreThanKeyAndModule) {
    const ImporterRecord record = Parsed("key=a.b\r\nmodule=c.so");
    EXPECT_EQ(record.key, "a.b");
    EXPECT_EQ(record.modulePath, "/modules/c.so");
    EXPECT_EQ(record.name, String(L"a.b"));
    EXPECT_TRUE(record.guid.IsZero());
}

const struct {
    const char* text;
    const char* reason;
} kDamaged[] = {
    {"", "no key or no module"},
    {"key = a", "no key or no module"},
    {"module = a.so", "no key or no module"},
    {"key = a\nmodule = ../a.so", "line 2 cannot be read"},
    {"key = a\nmodule = a.so\nguid = 1", "line 3 cannot be read"},
    {"key = a\nwhat = b", "line 2 cannot be read"},
    {"key =", "line 1 cannot be read"},
    {"no equals sign", "line 1 cannot be read"},
    {"endings = stp", "line 1 cannot be read"},
};

TEST(ImporterRecord, TellsWhyItCannotBeUsed) {
    for (const auto& [text, reason] : kDamaged) {
        ImporterRecord record;
        record.key = "kept";
        String told;
        EXPECT_FALSE(ParseImporterRecord(text, "/modules", record, told)) << text;
        EXPECT_EQ(told.ToUtf8(), reason) << text;
        EXPECT_EQ(record.key, "kept") << text;
    }
}

TEST(ImporterRecord, KnowsContentByATextInTheFirstBytes) {
    const ImporterRecord record = Parsed(kRecord);
    EXPECT_TRUE(MatchesContent(record, "/* comment */ ISO-10303-21; HEADER;"));
    EXPECT_FALSE(MatchesContent(record, "iso-10303-21;"));
    EXPECT_FALSE(MatchesContent(record, std::string(kProbeSize, ' ') + "ISO-10303-21;"));
}

TEST(ImporterRecord, KnowsEndingsInAnyCase) {
    const ImporterRecord record = Parsed(kRecord);
    EXPECT_TRUE(MatchesEnding(record, "a.stp"));
    EXPECT_TRUE(MatchesEnding(record, "❤.StEp"));
    EXPECT_FALSE(MatchesEnding(record, "a.stp.txt"));
    EXPECT_FALSE(MatchesEnding(record, "stp"));
    EXPECT_FALSE(MatchesEnding(record, ".stp"));
}

TEST(ImporterRecord, WithoutTextsOrEndingsKnowsNothing) {
    const ImporterRecord record = Parsed("key=a\nmodule=b");
    EXPECT_FALSE(MatchesContent(record, ""));
    EXPECT_FALSE(MatchesEnding(record, "a."));
}

}  // namespace
}  // namespace qn

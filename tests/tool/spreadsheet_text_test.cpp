#include "tool/spreadsheet_text.h"

#include <gtest/gtest.h>

namespace assembly::tests {
namespace {

using tool::CsvField;
using tool::WithoutFormula;

const struct {
    const char* text;
    const char* harmless;
} kTexts[] = {
    {"", ""},
    {"bolt M4", "bolt M4"},
    {"=1+1", "'=1+1"},
    {"+cmd", "'+cmd"},
    {"-cmd|' /C calc'!A0", "'-cmd|' /C calc'!A0"},
    {"@SUM(A1)", "'@SUM(A1)"},
    {"\t=1", "'\t'=1"},
    {"\r=1", "'\r'=1"},
    {"\nname", "'\nname"},
    {"  =1", "'  =1"},
    {"\"=1", "'\"=1"},
    {"' \"=1", "'' \"=1"},
    {"\u00a0=1", "'\u00a0=1"},
    {"＝1", "'＝1"},
    {"bolt;=1", "bolt;'=1"},
    {"bolt\n=1", "bolt\n'=1"},
    {"bolt; \"@1", "bolt;' \"@1"},
    {"a=b", "a=b"},
    {"M4-20", "M4-20"},
};

TEST(SpreadsheetText, NeverStartsAFormula) {
    for (const auto& [text, harmless] : kTexts)
        EXPECT_EQ(WithoutFormula(text), harmless);
}

TEST(SpreadsheetText, LeavesPlainNumbersAlone) {
    for (const char* number : {"5", "-5", "+5", "-0.25", "-.5", "+1.5e-3", "-1E10", "bolt;-5"})
        EXPECT_EQ(WithoutFormula(number), number);
}

TEST(SpreadsheetText, TakesNothingElseForANumber) {
    for (const char* text : {"-", "+", "-5 ", "-5+2", "-1e", "-.", "--5", "-5)", "-1.2.3"})
        EXPECT_EQ(WithoutFormula(text), "'" + std::string(text));
}

TEST(SpreadsheetText, StandsInQuotesWhereAFieldNeedsThem) {
    EXPECT_EQ(CsvField("bolt"), "bolt");
    EXPECT_EQ(CsvField(""), "");
    EXPECT_EQ(CsvField("a,b"), "\"a,b\"");
    EXPECT_EQ(CsvField("say \"a\""), "\"say \"\"a\"\"\"");
    EXPECT_EQ(CsvField("a\r\nb"), "\"a\r\nb\"");
    EXPECT_EQ(CsvField("a;b"), "\"a;b\"");
}

}  // namespace
}  // namespace assembly::tests

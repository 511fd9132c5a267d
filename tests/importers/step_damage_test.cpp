#include "importers/step/step_structure.h"
#include "tests/importers/step_text.h"

#include <gtest/gtest.h>

namespace {

using namespace qn::step;

std::string ErrorOf(const std::string& text) {
    return ReadStructure(text, "broken.stp").error;
}

std::string SmallFile() {
    StepText file;
    const auto car = file.Definition("car");
    const auto wheel = file.Definition("wheel");
    file.Use("1", car, wheel, file.Axes(10, 0, 0));
    return file.Text();
}

/// The text with `what` replaced by `with`, once.
std::string With(std::string text, const std::string& what, const std::string& with) {
    text.replace(text.find(what), what.size(), with);
    return text;
}

TEST(DamagedStep, SaysThatAnEmptyFileIsEmpty) {
    EXPECT_EQ(ErrorOf(""), "broken.stp: the file is empty");
}

TEST(DamagedStep, SaysThatOtherFilesAreNoStepFiles) {
    for (const char* text : {"solid cube\n",
                             "\x7f"
                             "ELF",
                             "ISO-10303-22;", "   ", "{}"})
        EXPECT_EQ(ErrorOf(text), "broken.stp: not a STEP file: it does not begin with ISO-10303-21") << text;
}

TEST(DamagedStep, NamesTheLineOfTheDamage) {
    EXPECT_EQ(ErrorOf(With(SmallFile(), "#1=", "#1?")),
              "broken.stp: line 8: '=' expected after #1, found '?'");
    EXPECT_EQ(ErrorOf(With(SmallFile(), "#1=", "hello #1=")),
              "broken.stp: line 8: an entity or ENDSEC expected");
    EXPECT_EQ(ErrorOf(With(SmallFile(), "#2=", "#99999999999999999999=")),
              "broken.stp: line 9: '#' is not followed by an entity number");
}

TEST(DamagedStep, SaysWhereItsDataEnd) {
    const std::string text = SmallFile();
    EXPECT_NE(
        ErrorOf(text.substr(0, text.find("ENDSEC;\nEND-ISO"))).find("the file ends inside its data, after "),
        std::string::npos);
    EXPECT_NE(ErrorOf(text.substr(0, text.find("#9=") + 8)).find("the file ends inside #9"),
              std::string::npos);
    EXPECT_NE(ErrorOf(text.substr(0, text.find("DATA;"))).find("before its DATA section"), std::string::npos);
}

TEST(DamagedStep, RefusesANumberThatIsGivenTwice) {
    EXPECT_EQ(ErrorOf(With(SmallFile(), "#2=", "#1=")), "broken.stp: the entity #1 is defined twice");
}

TEST(DamagedStep, RefusesAFileWithoutProducts) {
    EXPECT_EQ(ErrorOf("ISO-10303-21;HEADER;ENDSEC;DATA;#1=DIRECTION('',(0.,0.,1.));ENDSEC;END-ISO-10303-21;"),
              "broken.stp: the file holds no product definition");
}

TEST(DamagedStep, BoundsNesting) {
    const std::string deep = "PRODUCT(" + std::string(100000, '(') + std::string(100000, ')') + ")";
    StepText file;
    const auto product = file.Add(deep);
    const auto formation = file.Add("PRODUCT_DEFINITION_FORMATION('','',#" + std::to_string(product) + ")");
    file.Add("PRODUCT_DEFINITION('','',#" + std::to_string(formation) + ",$)");
    EXPECT_NE(ErrorOf(file.Text()).find("nested deeper than 64 levels"), std::string::npos);
    EXPECT_EQ(ReadStructure(file.Text(), "deep.stp").cause, Cause::kLimit);
}

TEST(DamagedStep, SurvivesRingsOfUnitsAndStyles) {
    StepText file;
    file.Definition("part");
    const auto self = std::to_string(file.Next());
    file.Add("LENGTH_MEASURE_WITH_UNIT(LENGTH_MEASURE(2.),#" + std::to_string(file.Next() + 1) + ")");
    file.Add("(CONVERSION_BASED_UNIT('',#" + self + ")LENGTH_UNIT()NAMED_UNIT(*))");
    file.Add("(GLOBAL_UNIT_ASSIGNED_CONTEXT((#" + std::to_string(file.Next() - 1) + ")))");
    const auto style = std::to_string(file.Next());
    file.Add("PRESENTATION_STYLE_ASSIGNMENT((#" + style + ",#" + style + "))");
    file.Add("STYLED_ITEM('',(#" + style + "),#1)");
    EXPECT_EQ(ErrorOf(file.Text()), "");
}

TEST(DamagedStep, AcceptsAMissingLastLineWithAWarning) {
    const std::string text = SmallFile();
    const auto result = ReadStructure(text.substr(0, text.find("END-ISO")), "short.stp");
    EXPECT_TRUE(result.Ok());
    EXPECT_EQ(result.model.warnings.size(), 1u);
}

TEST(DamagedStep, AcceptsCommentsAndBlanksAnywhereBetweenTokens) {
    std::string text = With(SmallFile(), "#1=", "/* ; ' */ #1 /* a */ = /* b */ \n ");
    text = With(text, "PRODUCT_CONTEXT('',", "PRODUCT_CONTEXT /* ( */ ( '' ,/* , */");
    EXPECT_EQ(ErrorOf(text), "");
}

TEST(DamagedStep, NeverCrashesWhereverItIsCut) {
    const std::string text = SmallFile();
    for (std::size_t length = 0; length < text.size(); ++length) {
        const auto result = ReadStructure(text.substr(0, length), "cut.stp");
        EXPECT_TRUE(result.Ok() || result.error.rfind("cut.stp: ", 0) == 0) << result.error;
    }
}

TEST(DamagedStep, NeverCrashesWhateverByteChanges) {
    const std::string text = SmallFile();
    for (std::size_t at = 0; at < text.size(); ++at)
        for (const char byte : {'\0', '(', ')', '\'', ';', '#', '9', '$', '\xff'}) {
            std::string changed = text;
            changed[at] = byte;
            ReadStructure(changed, "changed.stp");
        }
}

TEST(ExchangeFile, ExtractsEntitiesWithAllTheyLeadTo) {
    const ExchangeFile file(
        "ISO-10303-21;HEADER;FILE_SCHEMA(('A'));ENDSEC;DATA;#1=A(#2,(B(#3)));#2=B('#4');#3=C();"
        "#4=D(#1);ENDSEC;END-ISO-10303-21;");
    const ExchangeFile part(file.Extract({1}));
    EXPECT_EQ(part.EntityCount(), 3u);
    EXPECT_FALSE(part.Get(4).Exists());
    EXPECT_TRUE(part.Get(3).Is("C"));
    EXPECT_EQ(part.Schemas(), std::vector<std::string>{"A"});
}

TEST(DamagedStep, TellsAMissingFileFromADamagedOne) {
    const auto result = ReadStructure(std::filesystem::path("/nowhere/at all.stp"));
    EXPECT_EQ(result.cause, Cause::kUnreadable);
    EXPECT_EQ(result.error.rfind("/nowhere/at all.stp: ", 0), 0u) << result.error;
    EXPECT_EQ(ReadStructure(std::string("x"), "x").cause, Cause::kMalformed);
}

}  // namespace

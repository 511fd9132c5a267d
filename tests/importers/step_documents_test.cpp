#include "importers/step/step_limits.h"
#include "importers/step/step_structure.h"
#include "tests/importers/step_text.h"

#include <gtest/gtest.h>

namespace qn::step {
namespace {

std::string Number(StepText::Id id) {
    return "#" + std::to_string(id);
}

class StepDocuments : public testing::Test {
protected:
    StepText::Id Document(const std::string& id) {
        const auto type = text_.Add("DOCUMENT_TYPE('geometry')");
        return text_.Add("DOCUMENT_FILE('" + id + "','',''," + Number(type) + ",'',$)");
    }
    void Identify(StepText::Id document, const std::string& name, const std::string& source) {
        const auto role = text_.Add("IDENTIFICATION_ROLE('external document id and location',$)");
        const auto place = text_.Add("EXTERNAL_SOURCE(IDENTIFIER('" + source + "'))");
        text_.Add("APPLIED_EXTERNAL_IDENTIFICATION_ASSIGNMENT('" + name + "'," + Number(role) + "," +
                  Number(place) + ",(" + Number(document) + "))");
    }
    void Refer(StepText::Id document, StepText::Id item) {
        text_.Add("APPLIED_DOCUMENT_REFERENCE(" + Number(document) + ",'',(" + Number(item) + "))");
    }
    const Definition& Read() {
        result_ = ReadStructure(text_.Text(), "test.stp");
        EXPECT_TRUE(result_.Ok()) << result_.error;
        return result_.model.definitions.front();
    }

    StepText text_;
    StepText::Part part_ = text_.Definition("part");
    StructureResult result_;
};

TEST_F(StepDocuments, ADefinitionWithoutContentStandsForTheFileOfItsDocument) {
    Refer(Document("part.stp"), part_.definition);
    EXPECT_EQ(Read().ContentFile(), "part.stp");
}

TEST_F(StepDocuments, TheExternalIdentificationNamesTheFile) {
    const auto document = Document("DOC-1");
    Identify(document, "part.stp", "");
    Refer(document, part_.definition);
    EXPECT_EQ(Read().ContentFile(), "part.stp");
}

TEST_F(StepDocuments, TheSourceStatesItsFolder) {
    const auto document = Document("DOC-1");
    Identify(document, "part.stp", "parts\\\\small");
    Refer(document, part_.definition);
    EXPECT_EQ(Read().ContentFile(), "parts/small/part.stp");
}

TEST_F(StepDocuments, ANameWithAFolderNeedsNoSource) {
    const auto document = Document("DOC-1");
    Identify(document, "parts\\\\part.stp", "elsewhere");
    Refer(document, part_.definition);
    EXPECT_EQ(Read().ContentFile(), "parts/part.stp");
}

TEST_F(StepDocuments, AnExternalDefinitionOfTheShapeIsEnough) {
    const auto document = Document("DOC-1");
    Identify(document, "part.stp", "");
    const auto property = text_.Add("PROPERTY_DEFINITION('external definition',''," + Number(document) + ")");
    text_.Add("PROPERTY_DEFINITION_REPRESENTATION(" + Number(property) + "," + Number(part_.shape) + ")");
    EXPECT_EQ(Read().ContentFile(), "part.stp");
}

TEST_F(StepDocuments, AnotherPropertyOfTheDocumentSaysNothing) {
    const auto document = Document("DOC-1");
    Identify(document, "part.stp", "");
    const auto property = text_.Add("PROPERTY_DEFINITION('document property',''," + Number(document) + ")");
    text_.Add("PROPERTY_DEFINITION_REPRESENTATION(" + Number(property) + "," + Number(part_.shape) + ")");
    EXPECT_EQ(Read().ContentFile(), "");
}

TEST_F(StepDocuments, DrawingsAreNoContent) {
    Refer(Document("drawing.pdf"), part_.definition);
    EXPECT_EQ(Read().ContentFile(), "");
    EXPECT_EQ(Read().externalFiles, std::vector<std::string>{"drawing.pdf"});
}

TEST_F(StepDocuments, TheFirstFileThatHoldsDefinitionsCounts) {
    Refer(Document("drawing.pdf"), part_.definition);
    Refer(Document("PART.STP"), part_.definition);
    Refer(Document("part.glb"), part_.definition);
    EXPECT_EQ(Read().ContentFile(), "PART.STP");
}

TEST_F(StepDocuments, ADefinitionWithUsesIsOnlyDescribedByItsDocuments) {
    const auto bolt = text_.Definition("bolt");
    text_.Use("1", part_, bolt, text_.Axes(0, 0, 0));
    Refer(Document("part.stp"), part_.definition);
    EXPECT_EQ(Read().ContentFile(), "");
    EXPECT_EQ(Read().externalFiles, std::vector<std::string>{"part.stp"});
}

TEST_F(StepDocuments, AFileIsListedOnceInTheOrderOfTheFirstDocuments) {
    for (const char* name : {"b.pdf", "a.pdf", "b.pdf", "", "a.pdf"})
        Refer(Document(name), part_.definition);
    EXPECT_EQ(Read().externalFiles, (std::vector<std::string>{"b.pdf", "a.pdf"}));
}

TEST_F(StepDocuments, DefinitionsOfOneShapeShareItsExternalFiles) {
    const auto other = text_.Definition("other");
    const auto shape = text_.Add("PRODUCT_DEFINITION_SHAPE('',''," + Number(other.definition) + ")");
    for (int i = 0; i < 2; ++i)
        text_.Add("SHAPE_DEFINITION_REPRESENTATION(" + Number(shape) + "," + Number(part_.shape) + ")");
    for (const char* name : {"a.stp", "b.stp", "a.stp"}) {
        const auto document = Document(name);
        Identify(document, name, "");
        const auto property =
            text_.Add("PROPERTY_DEFINITION('external definition',''," + Number(document) + ")");
        text_.Add("PROPERTY_DEFINITION_REPRESENTATION(" + Number(property) + "," + Number(part_.shape) + ")");
    }
    const std::vector<std::string> files{"a.stp", "b.stp"};
    EXPECT_EQ(Read().externalFiles, files);
    EXPECT_EQ(result_.model.definitions[1].externalFiles, files);
}

TEST_F(StepDocuments, MoreBytesOfNamesThanTheLimitAreRefused) {
    constexpr std::size_t kLongName = std::size_t{1} << 20;
    const auto document = Document(std::string(kLongName, 'n'));
    std::string items = Number(part_.definition);
    for (std::size_t i = 0; i < step_limits::kMostFileNameBytes / kLongName; ++i)
        items += "," + Number(text_.Definition("part").definition);
    text_.Add("APPLIED_DOCUMENT_REFERENCE(" + Number(document) + ",'',(" + items + "))");
    result_ = ReadStructure(text_.Text(), "test.stp");
    EXPECT_EQ(result_.cause, Cause::kLimit) << result_.error;
}

TEST_F(StepDocuments, OneDefinitionCanHaveVeryManyDocuments) {
    constexpr int kCount = 5'000;
    for (int i = 0; i < kCount; ++i)
        Refer(Document(std::to_string(i) + ".pdf"), part_.definition);
    EXPECT_EQ(Read().externalFiles.size(), std::size_t{kCount});
}

}  // namespace
}  // namespace qn::step

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

}  // namespace
}  // namespace qn::step

#include "engine/xml/xml_document.h"

#include "engine/runtime/byte_stream.h"
#include "frame/host/api.h"

#include <gtest/gtest.h>

namespace qn::xml {
namespace {

constexpr const char* kDescription = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- what the module offers -->
<Interface context="assembly" xmlns="http://schemas.example.invalid/operations">
  <Methods>
    <Method id="1" name="first"><Parameter id="0" name="scene" type="scene"/></Method>
    <Method id="2" name="größe"/>
  </Methods>
</Interface>)";

Counted<Element> Document() {
    return CreateAs<Element>("qnxmldocument");
}

ResultEnum Load(Element& element, const std::string& text) {
    return element.LoadFromStream(ByteStream::FromBytes(text).Get());
}

TEST(XmlDocument, HoldsTheParsedRootAsItsOnlyChild) {
    const auto document = Document();
    ASSERT_EQ(Load(*document, kDescription), ResultEnum::kSuccess);
    ASSERT_EQ(document->GetChildCount(), 1);
    EXPECT_EQ(document->GetChild(0)->GetName(), String(L"Interface"));
    EXPECT_EQ(document->GetChild(0), document->FindChild(L"Interface"));
}

TEST(XmlDocument, StartsEmptyAndWithoutName) {
    const auto document = Document();
    EXPECT_EQ(document->GetChildCount(), 0);
    EXPECT_TRUE(document->GetName().IsEmpty());
    EXPECT_EQ(document->FindAttribute(L"id"), nullptr);
}

TEST(XmlDocument, IsAnElementAndAnExtension) {
    const auto document = Document();
    EXPECT_STREQ(document->GetInterfaceName(), "qnxmldocument");
    EXPECT_TRUE(document->IsTypeOf("QnXmlDocument"));
    EXPECT_TRUE(document->IsTypeOf("qnxmlelement"));
    EXPECT_TRUE(document->IsTypeOf("k3_extension"));
    EXPECT_FALSE(document->IsTypeOf("k3_node"));
}

TEST(XmlDocument, ReplacesItsContentWithTheNextLoad) {
    const auto document = Document();
    ASSERT_EQ(Load(*document, "<a/>"), ResultEnum::kSuccess);
    ASSERT_EQ(Load(*document, "<b/>"), ResultEnum::kSuccess);
    ASSERT_EQ(document->GetChildCount(), 1);
    EXPECT_EQ(document->GetChild(0)->GetName(), String(L"b"));
}

TEST(XmlElement, GivesChildElementsInOrderAndNothingElse) {
    const auto document = Document();
    ASSERT_EQ(Load(*document, "<r>text<a/><!-- note --><b/><a/></r>"), ResultEnum::kSuccess);
    Element* root = document->GetChild(0);
    ASSERT_EQ(root->GetChildCount(), 3);
    EXPECT_EQ(root->GetChild(1)->GetName(), String(L"b"));
    EXPECT_EQ(root->FindChild(L"a"), root->GetChild(0));
    EXPECT_EQ(root->GetChild(3), nullptr);
    EXPECT_EQ(root->GetChild(-1), nullptr);
}

TEST(XmlElement, FindsAttributesByName) {
    const auto document = Document();
    ASSERT_EQ(Load(*document, kDescription), ResultEnum::kSuccess);
    Element* methods = document->GetChild(0)->FindChild(L"Methods");
    ASSERT_NE(methods, nullptr);
    EXPECT_EQ(methods->GetChild(0)->FindAttribute(L"id")->GetValue(), String(L"1"));
    EXPECT_EQ(methods->GetChild(1)->FindAttribute(L"name")->GetValue(), String(L"größe"));
    EXPECT_EQ(methods->GetChild(0)->FindAttribute(L"ID"), nullptr);
    EXPECT_EQ(methods->GetChild(0)->FindAttribute(L"default"), nullptr);
}

TEST(XmlElement, ComparesNamesWithoutNamespace) {
    const auto document = Document();
    ASSERT_EQ(Load(*document, R"(<o:Interface xmlns:o="urn:x" o:id="7"><o:Methods/></o:Interface>)"),
              ResultEnum::kSuccess);
    Element* root = document->FindChild(L"Interface");
    ASSERT_NE(root, nullptr);
    EXPECT_NE(root->FindChild(L"Methods"), nullptr);
    EXPECT_EQ(root->FindAttribute(L"id")->GetValue(), String(L"7"));
}

TEST(XmlElement, CountsNamespaceDeclarationsAsNoAttributes) {
    const auto document = Document();
    ASSERT_EQ(Load(*document, R"(<a xmlns="urn:x" xmlns:id="urn:y"/>)"), ResultEnum::kSuccess);
    EXPECT_EQ(document->GetChild(0)->FindAttribute(L"id"), nullptr);
    EXPECT_EQ(document->GetChild(0)->FindAttribute(L"xmlns"), nullptr);
}

TEST(XmlElement, TakesOverTheRootWhenItIsLoadedItself) {
    const auto document = Document();
    ASSERT_EQ(Load(*document, "<a><b x='1'><old/></b></a>"), ResultEnum::kSuccess);
    Element* inner = document->GetChild(0)->GetChild(0);
    ASSERT_EQ(Load(*inner, "<c y='2'><new/></c>"), ResultEnum::kSuccess);
    EXPECT_EQ(inner->GetName(), String(L"c"));
    EXPECT_EQ(inner->FindAttribute(L"x"), nullptr);
    ASSERT_EQ(inner->GetChildCount(), 1);
    EXPECT_EQ(inner->GetChild(0)->GetName(), String(L"new"));
}

TEST(XmlElement, KeepsTheCatalogueThatTranslatesIt) {
    const auto document = Document();
    document->SetCatalogue(L"assembly");
    EXPECT_EQ(Cast<XmlElement>(document.Get())->GetCatalogue(), String(L"assembly"));
}

const struct {
    const char* what;
    const char* text;
} kDamaged[] = {
    {"nothing", ""},           {"blanks", "  \n"},
    {"no markup", "text"},     {"an open element", "<a><b></a>"},
    {"two roots", "<a/><b/>"}, {"an open attribute", "<a b='c></a>"},
};

TEST(XmlDocument, KeepsItsContentWhenTheTextIsDamaged) {
    for (const auto& [what, text] : kDamaged) {
        const auto document = Document();
        ASSERT_EQ(Load(*document, "<kept/>"), ResultEnum::kSuccess);
        EXPECT_LT(ToInt(Load(*document, text)), 1) << what;
        ASSERT_EQ(document->GetChildCount(), 1) << what;
        EXPECT_EQ(document->GetChild(0)->GetName(), String(L"kept")) << what;
    }
}

TEST(XmlDocument, RefusesToLoadFromNothing) {
    const auto document = Document();
    EXPECT_LT(ToInt(document->LoadFromStream(nullptr)), 1);
}

TEST(ParseXml, TellsWhatIsWrongAndWhere) {
    String reason;
    EXPECT_FALSE(ParseXml("<a><b></a>", &reason));
    EXPECT_NE(reason.ToUtf8().find("at byte"), std::string::npos);
    EXPECT_FALSE(ParseXml("<a/><b/>", &reason));
    EXPECT_NE(reason.ToUtf8().find("more than one root"), std::string::npos);
}

TEST(ParseXml, ReadsTextOfAnyDepth) {
    constexpr int kDepth = 100'000;
    std::string text;
    for (int i = 0; i < kDepth; ++i)
        text += "<a>";
    for (int i = 0; i < kDepth; ++i)
        text += "</a>";
    auto root = ParseXml(text);
    ASSERT_TRUE(root);
    int depth = 0;
    for (Element* element = root.Get(); element; element = element->GetChild(0))
        ++depth;
    EXPECT_EQ(depth, kDepth);
}

}  // namespace
}  // namespace qn::xml

#include "engine/runtime/resources.h"
#include "engine/xml/xml_document.h"
#include "graph/module_handle.h"
#include "operations/description.h"
#include "tests/operations/operations_support.h"

namespace qn::test {
namespace {

/// Remembers which catalogue it had when it was loaded.
class WatchedElement final : public xml::XmlElement {
public:
    ResultEnum LoadFromStream(Stream* stream) override {
        atLoad = GetCatalogue();
        return XmlElement::LoadFromStream(stream);
    }

    String atLoad = L"never loaded";
};

class DescriptionCatalogue : public OperationTest {
protected:
    DescriptionCatalogue() { element->SetCatalogue(L"before"); }

    const Counted<WatchedElement> element = Make<WatchedElement>();
};

TEST_F(DescriptionCatalogue, IsThatOfTheModuleAfterTheLoad) {
    EXPECT_EQ(operation->QueryInfo(element.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(element->atLoad, String(L"before"));
    EXPECT_EQ(element->GetCatalogue(), String(L"assembly"));
}

TEST_F(DescriptionCatalogue, IsThatOfTheModuleAfterAFailedLoad) {
    RegisterResource(graph::GetModuleHandle(), graph::kDescriptionResource, "<Interface");
    EXPECT_EQ(operation->QueryInfo(element.Get(), 0), ResultEnum::kNothing);
    EXPECT_EQ(element->atLoad, String(L"before"));
    EXPECT_EQ(element->GetCatalogue(), String(L"assembly"));
}

TEST_F(DescriptionCatalogue, StaysWhereThereIsNoDescription) {
    ASSERT_TRUE(RemoveResource(graph::GetModuleHandle(), graph::kDescriptionResource));
    EXPECT_EQ(operation->QueryInfo(element.Get(), 0), ResultEnum::kWriteFailed);
    EXPECT_EQ(element->atLoad, String(L"never loaded"));
    EXPECT_EQ(element->GetCatalogue(), String(L"before"));
}

}  // namespace
}  // namespace qn::test

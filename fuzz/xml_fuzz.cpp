// XML of any kind: a document either holds one root that can be walked, or stays empty.

#include "engine/runtime/byte_stream.h"
#include "engine/xml/xml_document.h"

#include <cstdint>
#include <cstdlib>

namespace {

using qn::xml::Element;

std::size_t CountElements(Element* top) {
    std::size_t elements = 0;
    std::vector<Element*> pending{top};
    while (!pending.empty()) {
        Element* element = pending.back();
        pending.pop_back();
        ++elements;
        (void)element->FindAttribute(L"id");
        for (int i = 0; i < element->GetChildCount(); ++i)
            pending.push_back(element->GetChild(i));
    }
    return elements;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto document = qn::Make<qn::xml::XmlDocument>();
    const auto stream = qn::ByteStream::FromBytes({reinterpret_cast<const char*>(data), size});
    const bool loaded = Succeeded(document->LoadFromStream(stream.Get()));
    // An element takes at least four bytes ("<a/>"), the document itself none.
    if (loaded != (document->GetChildCount() == 1)) std::abort();
    if (CountElements(document.Get()) > size / 4 + 1) std::abort();
    return 0;
}

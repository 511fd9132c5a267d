#include "engine/xml/xml_document.h"

#include <pugixml.hpp>

#include <utility>

namespace qn::xml {
namespace {

constexpr std::string_view kNamespaceDeclaration = "xmlns";

std::string_view WithoutPrefix(std::string_view name) {
    const std::size_t colon = name.find(':');
    return colon == std::string_view::npos ? name : name.substr(colon + 1);
}

bool DeclaresNamespace(std::string_view name) {
    return name.substr(0, name.find(':')) == kNamespaceDeclaration;
}

Counted<XmlElement> Convert(const pugi::xml_node& node) {
    auto element = Make<XmlElement>(String::FromUtf8(WithoutPrefix(node.name())));
    for (const pugi::xml_attribute& attribute : node.attributes()) {
        if (DeclaresNamespace(attribute.name())) continue;
        element->AddAttribute(String::FromUtf8(WithoutPrefix(attribute.name())),
                              String::FromUtf8(attribute.value()));
    }
    return element;
}

/// Parents first and with a stack of its own: depth costs memory, not recursion.
Counted<XmlElement> ConvertTree(const pugi::xml_node& top) {
    Counted<XmlElement> root = Convert(top);
    std::vector<std::pair<pugi::xml_node, XmlElement*>> pending{{top, root.Get()}};
    while (!pending.empty()) {
        const auto [node, element] = pending.back();
        pending.pop_back();
        for (const pugi::xml_node& child : node.children()) {
            if (child.type() != pugi::node_element) continue;
            const Counted<XmlElement> made = Convert(child);
            element->AddChild(made);
            pending.emplace_back(child, made.Get());
        }
    }
    return root;
}

int CountRoots(const pugi::xml_document& document) {
    int roots = 0;
    for (const pugi::xml_node& node : document.children())
        roots += node.type() == pugi::node_element;
    return roots;
}

}  // namespace

Counted<XmlElement> ParseXml(std::string_view text, String* reason) {
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_buffer(text.data(), text.size());
    if (result && CountRoots(document) == 1) return ConvertTree(document.document_element());
    if (reason) {
        const char* cause = result ? "more than one root element" : result.description();
        reason->Format(L"%S at byte %lld", cause, static_cast<long long>(result.offset));
    }
    return {};
}

}  // namespace qn::xml

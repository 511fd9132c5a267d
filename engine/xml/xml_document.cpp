#include "engine/xml/xml_document.h"

#include "engine/runtime/byte_stream.h"

namespace qn::xml {

bool Element::IsTypeOf(const char* name) const {
    return EqualKeys(name, "qnxmlelement") || Extension::IsTypeOf(name);
}

const ClassRecord& Element::StaticClass() {
    static const ClassRecord& record = InternClass("qn::xml::Element");
    return record;
}

void* Element::CastTo(const ClassRecord& wanted) {
    return CastThrough<Element, Extension>(this, wanted);
}

const Attribute* XmlElement::FindAttribute(const String& name) const {
    for (const XmlAttribute& attribute : attributes_) {
        if (attribute.GetName() == name) return &attribute;
    }
    return nullptr;
}

Element* XmlElement::FindChild(const wchar_t* name) {
    for (const auto& child : children_) {
        if (child->GetName() == String(name)) return child.Get();
    }
    return nullptr;
}

Element* XmlElement::GetChild(int index) {
    return index >= 0 && index < GetChildCount() ? children_[static_cast<std::size_t>(index)].Get() : nullptr;
}

ResultEnum XmlElement::LoadFromStream(Stream* stream) {
    if (!stream) return ResultEnum::kNothing;
    const Counted<XmlElement> root = ParseXml(ReadToEnd(*stream));
    if (!root) return ResultEnum::kNothing;
    Adopt(root);
    return ResultEnum::kSuccess;
}

void XmlElement::Adopt(const Counted<XmlElement>& root) {
    name_ = root->name_;
    attributes_ = root->attributes_;
    children_ = root->children_;
}

const ClassRecord& XmlElement::StaticClass() {
    static const ClassRecord& record = InternClass("qn::xml::XmlElement");
    return record;
}

void* XmlElement::CastTo(const ClassRecord& wanted) {
    return CastThrough<XmlElement, Element>(this, wanted);
}

bool XmlDocument::IsTypeOf(const char* name) const {
    return EqualKeys(name, "qnxmldocument") || XmlElement::IsTypeOf(name);
}

void XmlDocument::Adopt(const Counted<XmlElement>& root) {
    attributes_.clear();
    children_.assign(1, root);
}

}  // namespace qn::xml

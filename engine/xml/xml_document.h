#pragma once

#include "frame/host/xml.h"

#include <string_view>
#include <vector>

namespace qn::xml {

class XmlAttribute final : public Attribute {
public:
    XmlAttribute(const String& name, const String& value) : name_(name), value_(value) {}
    String GetName() const override { return name_; }
    String GetValue() const override { return value_; }

private:
    String name_, value_;
};

/// One element. Names, its own and those of attributes, are kept without namespace prefix; namespace
/// declarations are no attributes. `LoadFromStream` gives it the name, attributes and children of the parsed
/// root.
class XmlElement : public Element {
public:
    XmlElement() = default;
    explicit XmlElement(const String& name) : name_(name) {}

    String GetName() const override { return name_; }
    const Attribute* FindAttribute(const String& name) const override;
    Element* FindChild(const wchar_t* name) override;
    int GetChildCount() const override { return static_cast<int>(children_.size()); }
    Element* GetChild(int index) override;
    const String& GetCatalogue() const { return catalogue_; }

    void AddAttribute(const String& name, const String& value) { attributes_.emplace_back(name, value); }
    void AddChild(const Counted<XmlElement>& child) { children_.push_back(child); }
    ResultEnum LoadFromStream(Stream* stream) override;
    void SetCatalogue(const String& name) override { catalogue_ = name; }

    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

protected:
    virtual void Adopt(const Counted<XmlElement>& root);
    std::vector<XmlAttribute> attributes_;
    std::vector<Counted<XmlElement>> children_;

private:
    String name_;
    String catalogue_;
};

/// The document: its only child is the parsed root. Class key "qnxmldocument".
class XmlDocument final : public XmlElement {
public:
    const char* GetInterfaceName() const override { return "qnxmldocument"; }
    bool IsTypeOf(const char* name) const override;

private:
    void Adopt(const Counted<XmlElement>& root) override;
};

/// The root element of a text in any encoding that XML knows; null, with the reason and byte offset, if it is
/// not well formed.
Counted<XmlElement> ParseXml(std::string_view text, String* reason = nullptr);

}  // namespace qn::xml

#pragma once

#include "frame/host/extension.h"

namespace qn::xml {

class Attribute {
public:
    virtual String GetName() const = 0;
    virtual String GetValue() const = 0;

protected:
    ~Attribute() = default;
};

/// An element of an XML document, or the document itself (class key "qnxmldocument"), which holds the parsed
/// root as its only child. Elements live as long as their document. Names are compared without namespace.
class Element : public Extension {
public:
    virtual String GetName() const = 0;
    /// Borrowed, or null.
    virtual const Attribute* FindAttribute(const String& name) const = 0;
    virtual Element* FindChild(const wchar_t* name) = 0;
    virtual int GetChildCount() const = 0;
    /// Child elements in order; null outside.
    virtual Element* GetChild(int index) = 0;
    /// Replaces the content; kSuccess, or below 1 with the content unchanged.
    virtual ResultEnum LoadFromStream(Stream* stream) = 0;
    /// The catalogue that translates the texts of the document.
    virtual void SetCatalogue(const String& name) = 0;

    const char* GetInterfaceName() const override { return "qnxmlelement"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;
};

}  // namespace qn::xml

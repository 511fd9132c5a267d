#include "graph/call_description.h"

#include "frame/host/params.h"
#include "frame/host/xml.h"

#include <algorithm>

namespace qn::graph {

namespace {

constexpr std::wstring_view kPlainTypes[] = {L"string", L"filename", L"int", L"bool"};

/// The attribute as a number: leading blanks, sign, digits; 0 if there is none.
int NumberOf(const xml::Attribute* attribute) {
    return attribute ? Var(attribute->GetValue()).ToInt() : 0;
}

xml::Element* FindMethod(xml::Element& document, int method) {
    xml::Element* described = document.FindChild(L"Interface");
    xml::Element* methods = described ? described->FindChild(L"Methods") : nullptr;
    if (!methods) return nullptr;
    for (int i = 0; i < methods->GetChildCount(); ++i) {
        xml::Element* child = methods->GetChild(i);
        if (child && child->GetName() == L"Method" && NumberOf(child->FindAttribute(L"id")) == method)
            return child;
    }
    return nullptr;
}

void FillArgument(Params& arguments, const Params& source, const xml::Element& parameter, Interface* scene) {
    const auto* id = parameter.FindAttribute(L"id");
    const auto* type = parameter.FindAttribute(L"type");
    if (!id || !type || !parameter.FindAttribute(L"name")) return;
    const int number = NumberOf(id);
    const String typeName = type->GetValue();
    if (typeName == L"scene") {
        arguments.SetParamObject(number, scene);
        return;
    }
    if (std::find(std::begin(kPlainTypes), std::end(kPlainTypes), typeName.View()) == std::end(kPlainTypes))
        return;
    Var value = source.GetParamVar(number);
    if (value.IsEmpty())
        if (const auto* fallback = parameter.FindAttribute(L"default")) value = Var(fallback->GetValue());
    arguments.SetParamVar(number, value);
}

}  // namespace

void FillArguments(Params& arguments, Params* source, xml::Element* document, int method, Interface* scene) {
    if (!source || !document) return;
    xml::Element* description = FindMethod(*document, method);
    if (!description) return;
    for (int i = 0; i < description->GetChildCount(); ++i) {
        const xml::Element* child = description->GetChild(i);
        if (child && child->GetName() == L"Parameter") FillArgument(arguments, *source, *child, scene);
    }
}

}  // namespace qn::graph

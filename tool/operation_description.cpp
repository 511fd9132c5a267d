#include "tool/operation_description.h"

#include "frame/host/api.h"
#include "frame/host/xml.h"
#include "tool/failure.h"

#include <algorithm>
#include <charconv>

namespace assembly::tool {
namespace {

using qn::xml::Element;

constexpr const char* kDiscoverKey = "qn.graph.hierarchyoperation.discover";
constexpr unsigned kAllInfo = 0xff;
constexpr char kTranslationMark = '|';

std::optional<std::string> FindText(const Element& element, const wchar_t* name) {
    const qn::xml::Attribute* attribute = element.FindAttribute(name);
    return attribute ? std::optional(attribute->GetValue().ToUtf8()) : std::nullopt;
}

std::string TextOf(const Element& element, const wchar_t* name) {
    return FindText(element, name).value_or(std::string());
}

int NumberOf(const Element& element, const wchar_t* name) {
    const std::string text = TextOf(element, name);
    int number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

OperationParameter ReadParameter(const Element& element) {
    OperationParameter parameter;
    parameter.id = NumberOf(element, L"id");
    parameter.name = TextOf(element, L"name");
    parameter.type = TextOf(element, L"type");
    parameter.comment = TextOf(element, L"comment");
    parameter.defaultValue = FindText(element, L"default");
    return parameter;
}

Operation ReadOperation(Element& element) {
    Operation operation;
    operation.id = NumberOf(element, L"id");
    operation.name = TextOf(element, L"name");
    operation.comment = TextOf(element, L"comment");
    operation.isPrivate = TextOf(element, L"private") == "true";
    for (int i = 0; i < element.GetChildCount(); ++i) {
        const Element& child = *element.GetChild(i);
        if (child.GetName() == qn::String(L"Result")) operation.resultType = TextOf(child, L"type");
        if (child.GetName() == qn::String(L"Parameter")) operation.parameters.push_back(ReadParameter(child));
    }
    return operation;
}

}  // namespace

const OperationParameter* Operation::FindScene() const {
    const auto found = std::find_if(parameters.begin(), parameters.end(),
                                    [](const OperationParameter& parameter) { return parameter.IsScene(); });
    return found == parameters.end() ? nullptr : &*found;
}

const OperationParameter* Operation::Find(std::string_view parameterName) const {
    const auto found =
        std::find_if(parameters.begin(), parameters.end(),
                     [&](const OperationParameter& parameter) { return parameter.name == parameterName; });
    return found == parameters.end() ? nullptr : &*found;
}

const Operation* OperationList::Find(std::string_view nameOrId) const {
    const auto found = std::find_if(operations.begin(), operations.end(), [&](const Operation& operation) {
        return operation.name == nameOrId || std::to_string(operation.id) == nameOrId;
    });
    return found == operations.end() ? nullptr : &*found;
}

OperationList DescribeOperations() {
    const auto object = qn::CreateAs<qn::Extension>(kDiscoverKey);
    const auto document = qn::CreateAs<Element>("qnxmldocument");
    if (!object || !document || !Succeeded(object->QueryInfo(document.Get(), kAllInfo)))
        throw Failure(ExitCode::kDefect, "the module does not describe its operations");
    return ReadOperationList(*document);
}

OperationList ReadOperationList(Element& document) {
    OperationList list;
    Element* root = document.GetChild(0);
    Element* methods = root ? root->FindChild(L"Methods") : nullptr;
    if (root) list.context = TextOf(*root, L"context");
    for (int i = 0; methods && i < methods->GetChildCount(); ++i)
        if (methods->GetChild(i)->GetName() == qn::String(L"Method"))
            list.operations.push_back(ReadOperation(*methods->GetChild(i)));
    return list;
}

std::string_view PlainComment(std::string_view comment) {
    if (!comment.empty() && comment.front() == kTranslationMark) comment.remove_prefix(1);
    return comment;
}

}  // namespace assembly::tool

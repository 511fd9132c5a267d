#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qn::xml {
class Element;
}

namespace assembly::tool {

/// One argument of an operation, as the module describes it.
struct OperationParameter {
    int id = 0;  ///< its place in the call
    std::string name, type;
    std::string comment;                      ///< as described
    std::optional<std::string> defaultValue;  ///< as described; without one the argument has to be given

    /// The scene that is worked on: the file of the call, not a value.
    bool IsScene() const { return type == "scene"; }
};

/// One operation, as the module describes it.
struct Operation {
    int id = 0;
    std::string name;
    std::string comment;  ///< as described
    std::string resultType;
    bool isPrivate = false;
    std::vector<OperationParameter> parameters;

    /// The parameter that takes the scene, or null.
    const OperationParameter* FindScene() const;
    const OperationParameter* Find(std::string_view parameterName) const;
};

/// All operations of a module.
struct OperationList {
    std::string context;  ///< catalogue of the texts
    std::vector<Operation> operations;

    /// By name, or by the text of its id; null if there is none.
    const Operation* Find(std::string_view nameOrId) const;
};

/// Asks the module for its description. Fails with kDefect if it has none that can be read.
OperationList DescribeOperations();
/// What stands in a description document.
OperationList ReadOperationList(qn::xml::Element& document);

/// A comment for people: the mark in front of texts to translate is taken off.
std::string_view PlainComment(std::string_view comment);

}  // namespace assembly::tool

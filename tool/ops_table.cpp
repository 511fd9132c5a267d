#include "tool/operation_types.h"
#include "tool/ops_formats.h"

#include <algorithm>

namespace assembly::tool {
namespace {

constexpr std::size_t kIdColumns = 4;
constexpr const char* kPrivate = "private  ";
constexpr const char* kPublic = "         ";

std::string Padded(std::string text, std::size_t columns) {
    text.resize(std::max(text.size(), columns), ' ');
    return text;
}

std::string Example(const Operation& operation) {
    std::string text = "assembly run " + operation.name;
    if (operation.FindScene()) text += " FILE";
    for (const OperationParameter& parameter : operation.parameters)
        if (!parameter.IsScene() && !parameter.defaultValue)
            text += " " + parameter.name + "=" + TypeOf(parameter.type).shown;
    return text;
}

void WriteParameters(Output& output, const Operation& operation) {
    std::size_t nameColumns = 0, defaultColumns = 0;
    const auto shownName = [](const OperationParameter& parameter) {
        return parameter.name + "=" + TypeOf(parameter.type).shown;
    };
    const auto shownDefault = [](const OperationParameter& parameter) {
        return parameter.defaultValue ? "(" + *parameter.defaultValue + ")" : std::string("needed");
    };
    for (const OperationParameter& parameter : operation.parameters) {
        if (parameter.IsScene()) continue;
        nameColumns = std::max(nameColumns, shownName(parameter).size());
        defaultColumns = std::max(defaultColumns, shownDefault(parameter).size());
    }
    for (const OperationParameter& parameter : operation.parameters) {
        if (parameter.IsScene()) continue;
        output.Line("  " + Padded(shownName(parameter), nameColumns + 2) +
                    Padded(shownDefault(parameter), defaultColumns + 2) +
                    Printable(PlainComment(parameter.comment)));
    }
}

}  // namespace

void WriteOperationTable(Output& output, const OperationList& list) {
    std::size_t nameColumns = 0;
    for (const Operation& operation : list.operations)
        nameColumns = std::max(nameColumns, operation.name.size());
    for (const Operation& operation : list.operations)
        output.Line(Padded(std::to_string(operation.id), kIdColumns) +
                    Padded(operation.name, nameColumns + 2) + (operation.isPrivate ? kPrivate : kPublic) +
                    Printable(PlainComment(operation.comment)));
    if (list.operations.size() == 1) WriteParameters(output, list.operations.front());
}

void WriteOperationHelp(Output& output, const Operation& operation) {
    output.Line("Examples:");
    output.Line("  " + Example(operation));
    if (operation.FindScene()) output.Line("  " + Example(operation) + " -o OUT.qn");
    output.Line();
    output.Line(Printable(PlainComment(operation.comment)) + ".");
    output.Line("Operation " + std::to_string(operation.id) + (operation.isPrivate ? ", private" : "") +
                "; exit code 1 if it answers 0.");
    const bool hasArguments =
        operation.parameters.size() > (operation.FindScene() ? std::size_t{1} : std::size_t{0});
    if (!hasArguments) return;
    output.Line("\nArguments:");
    WriteParameters(output, operation);
}

}  // namespace assembly::tool

#include "tool/operation_arguments.h"

#include "tool/failure.h"
#include "tool/nearest.h"
#include "tool/operation_types.h"

#include <map>

namespace assembly::tool {
namespace {

/// Texts by parameter, as given.
using GivenTexts = std::map<const OperationParameter*, std::string>;

[[noreturn]] void Refuse(const Operation& operation, const std::string& what) {
    throw Failure(ExitCode::kUsage, "run " + operation.name + ": " + what + "\nTry: assembly run " +
                                        operation.name + " --help");
}

std::vector<std::string> NamesOf(const Operation& operation) {
    std::vector<std::string> names;
    for (const OperationParameter& parameter : operation.parameters)
        names.push_back(parameter.name);
    return names;
}

void TakeWord(const Operation& operation, const std::string& word, GivenTexts& given) {
    const std::size_t equals = word.find('=');
    if (equals == std::string::npos) Refuse(operation, "\"" + word + "\" is not of the form key=value");
    const std::string key = word.substr(0, equals);
    const OperationParameter* parameter = operation.Find(key);
    if (!parameter)
        Refuse(operation, "there is no argument \"" + key + "\"" + Suggestion(key, NamesOf(operation)));
    if (!given.emplace(parameter, word.substr(equals + 1)).second)
        Refuse(operation, "the argument \"" + key + "\" is given twice");
}

bool NamesParameter(const Operation& operation, const std::string& word) {
    const std::size_t equals = word.find('=');
    return equals != std::string::npos && operation.Find(word.substr(0, equals));
}

GivenTexts Collect(const Operation& operation, const std::vector<std::string>& words) {
    GivenTexts given;
    std::size_t first = 0;
    const OperationParameter* scene = operation.FindScene();
    if (scene && !words.empty() && !NamesParameter(operation, words.front())) {
        given.emplace(scene, words.front());
        first = 1;
    }
    for (std::size_t i = first; i < words.size(); ++i)
        TakeWord(operation, words[i], given);
    return given;
}

qn::Var ValueOf(const Operation& operation, const OperationParameter& parameter, const std::string& text) {
    const OperationType& type = TypeOf(parameter.type);
    const auto value = type.parse(text);
    if (!value) Refuse(operation, "\"" + text + "\" for \"" + parameter.name + "\" is not " + type.expected);
    return *value;
}

void CheckNothingMissing(const Operation& operation, const GivenTexts& given) {
    std::string missing;
    for (const OperationParameter& parameter : operation.parameters) {
        const bool isNeeded = parameter.IsScene() || !parameter.defaultValue;
        if (!isNeeded || given.count(&parameter)) continue;
        missing += (missing.empty() ? "" : ", ") +
                   (parameter.IsScene() ? std::string("FILE") : "\"" + parameter.name + "\"");
    }
    if (!missing.empty()) Refuse(operation, "missing: " + missing);
}

}  // namespace

OperationArguments ReadArguments(const Operation& operation, const std::vector<std::string>& words) {
    const GivenTexts given = Collect(operation, words);
    OperationArguments arguments;
    for (const OperationParameter& parameter : operation.parameters) {
        const auto text = given.find(&parameter);
        if (parameter.IsScene()) {
            if (text != given.end()) arguments.sceneFile = text->second;
            continue;
        }
        if (text != given.end())
            arguments.values.emplace_back(parameter.id, ValueOf(operation, parameter, text->second));
        else if (parameter.defaultValue)
            arguments.values.emplace_back(parameter.id,
                                          ValueOf(operation, parameter, *parameter.defaultValue));
    }
    CheckNothingMissing(operation, given);
    return arguments;
}

const Operation& FindOperation(const OperationList& list, const std::string& nameOrId) {
    if (const Operation* operation = list.Find(nameOrId)) return *operation;
    std::vector<std::string> names;
    for (const Operation& operation : list.operations)
        names.push_back(operation.name);
    throw Failure(ExitCode::kUsage, "there is no operation \"" + nameOrId + "\"" +
                                        Suggestion(nameOrId, names) + "\nTry: assembly ops");
}

}  // namespace assembly::tool

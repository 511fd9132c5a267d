#pragma once

#include "frame/host/var.h"
#include "tool/operation_description.h"

#include <string>
#include <utility>
#include <vector>

namespace assembly::tool {

/// The arguments of one call, checked against the description.
struct OperationArguments {
    std::string sceneFile;                        ///< empty for an operation without scene
    std::vector<std::pair<int, qn::Var>> values;  ///< by place, the defaults of the description included
};

/// Reads the words after an operation's name: the file, if the operation works on a scene, then "key=value".
/// The file may also be given as the value of the scene's parameter. Fails with kUsage, naming what is wrong
/// and what was expected.
OperationArguments ReadArguments(const Operation& operation, const std::vector<std::string>& words);

/// The operation by name or id. Fails with kUsage and the nearest name.
const Operation& FindOperation(const OperationList& list, const std::string& nameOrId);

}  // namespace assembly::tool

#pragma once

#include "frame/host/api.h"

#include <string_view>

namespace qn::graph {

/// The name under which a module's handle gives the description.
inline constexpr const wchar_t* kDescriptionResource = L"XML|ASSEMBLY";

/// The operations as UTF-8 XML: names, arguments, defaults, comments.
std::string_view OperationDescription();
/// Makes the description a resource of the module. Called once, when the module registers.
void RegisterOperationDescription(ModuleHandle handle);

}  // namespace qn::graph

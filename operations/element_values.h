#pragma once

#include "frame/host/hierarchy_element.h"
#include "frame/host/node.h"
#include "graph/instance.h"
#include "graph/reference.h"

namespace qn::graph {

/// Empties the property if its value converts to true.
inline void ClearProperty(HierarchyElement& element, PropEnum id) {
    if (element.GetProperty(id, 0).ToBool()) element.SetProperty(id, Var());
}

/// Empties the parameter if its value converts to true.
inline void ClearParam(Extension& object, int id) {
    if (object.GetParamVar(id).ToBool()) object.SetParamVar(id, Var());
}

}  // namespace qn::graph

#include "frame/host/resource.h"
#include "operations/description.h"

namespace qn::graph {

void RegisterOperationDescription(ModuleHandle handle) {
    RegisterResource(handle, kDescriptionResource, OperationDescription());
}

}  // namespace qn::graph

#include "operations/layers.h"
#include "operations/methods.h"
#include "operations/remove_metadata.h"
#include "services/hierarchy_operation.h"

namespace qn::graph {

int RemoveHierarchyCacheMethod(const MethodCall& call) {
    const MethodArguments& arguments = call.arguments;
    call.operation.RemoveHierarchyCache(call.scene, arguments.Bool(1), arguments.Bool(2), arguments.Bool(3),
                                        arguments.Bool(4));
    return MethodResult::kDone;
}

int RemoveMetadataMethod(const MethodCall& call) {
    const unsigned flags =
        ReadFlags(call.arguments, 1, LayerFlag::kEntity, LayerFlag::kNode, LayerFlag::kSelector);
    RemoveMetadataTree(call.operation, *call.scene, flags, 0, call.arguments.Bool(4));
    return MethodResult::kDone;
}

}  // namespace qn::graph

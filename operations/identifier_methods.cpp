#include "operations/build_hierarchy.h"
#include "operations/layers.h"
#include "operations/methods.h"
#include "services/hierarchy_operation.h"

namespace qn::graph {
namespace {

/// Arguments 1 to 3 of the methods that name the layers to work on.
unsigned ReadLayers(const MethodArguments& arguments) {
    return ReadFlags(arguments, 1, LayerFlag::kEntity, LayerFlag::kNode, LayerFlag::kSelector);
}

}  // namespace

int RemoveIdsMethod(const MethodCall& call) {
    const unsigned flags = ReadFlags(call.arguments, 1, RemovalFlag::kEntityBsId, RemovalFlag::kNodeBsId,
                                     RemovalFlag::kSelectorBsId, RemovalFlag::kEntityExternalId,
                                     RemovalFlag::kNodeExternalId, RemovalFlag::kSelectorExternalId);
    call.operation.RemoveIds(call.scene, flags);
    return MethodResult::kDone;
}

int UpdateBsIdsMethod(const MethodCall& call) {
    const unsigned flags = ReadLayers(call.arguments);
    const String modification = call.arguments.PlainText(4);
    const bool asSuffix = call.arguments.Bool(5);
    if (!(flags & LayerFlag::kAll) || modification.IsEmpty()) return MethodResult::kRefused;
    call.operation.UpdateBsIds(call.scene, modification, flags, !asSuffix);
    return MethodResult::kDone;
}

int GenerateBsIdsMethod(const MethodCall& call) {
    const unsigned flags = ReadLayers(call.arguments);
    const String prefix = call.arguments.Text(4), suffix = call.arguments.Text(5);
    if (!(flags & LayerFlag::kAll)) return MethodResult::kRefused;
    call.operation.GenerateBsIds(call.scene, flags, prefix, suffix);
    return MethodResult::kDone;
}

int ReplaceBsIdsMethod(const MethodCall& call) {
    call.operation.ReplaceBsIdsWithBasedOn(call.scene);
    return MethodResult::kDone;
}

int GenerateHierarchyMethod(const MethodCall& call) {
    GenerateHierarchyWithBsIds(*call.scene);
    return MethodResult::kDone;
}

int HoldSceneMethod(const MethodCall& call) {
    call.operation.HoldScene(call.scene);
    return MethodResult::kDone;
}

}  // namespace qn::graph

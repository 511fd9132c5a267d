#include "operations/hierarchy_operation_impl.h"

#include "frame/host/scene_document.h"
#include "frame/host/xml.h"
#include "graph/module_handle.h"
#include "operations/description.h"
#include "operations/generate_bs_ids.h"
#include "operations/method_table.h"
#include "operations/remove_hierarchy_cache.h"
#include "operations/remove_ids.h"
#include "operations/remove_metadata.h"
#include "operations/replace_with_based_on.h"
#include "operations/update_bs_ids.h"

namespace qn::graph {
namespace {

constexpr int kResourceMode = 2;
constexpr const wchar_t* kCatalogue = L"assembly";

}  // namespace

ResultEnum HierarchyOperationImpl::QueryInfo(xml::Element* element, unsigned) {
    const Counted<Stream> stream = Stream::Create(GetModuleHandle(), kDescriptionResource, kResourceMode);
    if (!stream) return ResultEnum::kWriteFailed;
    const ResultEnum result = element->LoadFromStream(stream.Get());
    element->SetCatalogue(kCatalogue);
    return result;
}

int HierarchyOperationImpl::Invoke(int methodId, Params* arguments, Context* context) {
    return arguments ? RunMethod(*this, methodId, *arguments, context) : ToInt(ResultEnum::kNothing);
}

void HierarchyOperationImpl::RemoveIds(Interface* node, unsigned flags) {
    if (auto* root = Cast<k3::Node>(node)) graph::RemoveIds(*root, flags);
}

void HierarchyOperationImpl::RemoveHierarchyCache(Interface* node, bool keepAllMetadataAsSelectorMetadata,
                                                  bool keepSelectorBsIds, bool keepSelectorExternalIds,
                                                  bool keepAllMetadataAsEntityMetadata) {
    const CacheRemoval what{keepAllMetadataAsSelectorMetadata, keepSelectorBsIds, keepSelectorExternalIds,
                            keepAllMetadataAsEntityMetadata};
    if (auto* root = Cast<k3::Node>(node)) graph::RemoveHierarchyCache(*root, what);
}

void HierarchyOperationImpl::UpdateBsIds(Interface* node, const String& modification, unsigned flags,
                                         bool asPrefix) {
    if (auto* root = Cast<k3::Node>(node)) graph::UpdateBsIds(*root, {modification, asPrefix}, flags);
}

void HierarchyOperationImpl::RemoveNodeMetadata(Interface* node, unsigned flags, unsigned,
                                                bool preserveSystemMetadata) {
    if (auto* only = Cast<k3::Node>(node)) RemoveMetadata(*only, flags, preserveSystemMetadata);
}

void HierarchyOperationImpl::HoldScene(k3::Node* node) {
    const Counted<k3::Scene> held(node ? node->GetScene() : nullptr);
}

void HierarchyOperationImpl::GenerateBsIds(Interface* node, unsigned flags, const String& prefix,
                                           const String& suffix) {
    if (auto* root = Cast<k3::Node>(node)) graph::GenerateBsIds(*root, flags, {prefix, suffix});
}

void HierarchyOperationImpl::ReplaceBsIdsWithBasedOn(k3::Node* node) {
    if (node) graph::ReplaceBsIdsWithBasedOn(*node);
}

ResultEnum HierarchyOperationImpl::CopyFrom(const Interface* source, unsigned flags) {
    const auto* const operation = Cast<HierarchyOperation>(source);
    return operation ? CloneFrom(*operation, flags) : ResultEnum::kWrongClass;
}

bool HierarchyOperationImpl::IsTypeOf(const char* name) const {
    return EqualKeys(name, kHierarchyOperationKey) || HierarchyOperation::IsTypeOf(name);
}

}  // namespace qn::graph

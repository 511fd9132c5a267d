#pragma once

#include "frame/host/change_management.h"
#include "services/hierarchy_operation.h"

namespace qn::graph {

inline constexpr const char* kHierarchyOperationKey = "qn.graph.hierarchyoperation";

/// The class behind "qn.graph.hierarchyoperation", "....invoke" and "....discover": describes the operations
/// and runs them by number. Keeps nothing between calls.
class HierarchyOperationImpl final : public HierarchyOperation,
                                     public ChangeManagementSupport<HierarchyOperationImpl> {
public:
    /// Fills the element from the module's description. kWriteFailed, with the element as it was, if the
    /// module has none.
    ResultEnum QueryInfo(xml::Element* element, unsigned reserved) override;
    /// 1: done, or yes. 0: unknown number, no arguments, no scene, not available, or no. -8: a file name is
    /// missing. Arguments are read by their place; what is missing reads as empty.
    int Invoke(int methodId, Params* arguments, Context* context) override;

    void RemoveIds(Interface* node, unsigned flags) override;
    void RemoveHierarchyCache(Interface* node, bool keepAllMetadataAsSelectorMetadata, bool keepSelectorBsIds,
                              bool keepSelectorExternalIds, bool keepAllMetadataAsEntityMetadata) override;
    void UpdateBsIds(Interface* node, const String& modification, unsigned flags, bool asPrefix) override;
    void RemoveNodeMetadata(Interface* node, unsigned flags, unsigned reserved,
                            bool preserveSystemMetadata) override;
    void HoldScene(k3::Node* node) override;
    void GenerateBsIds(Interface* node, unsigned flags, const String& prefix, const String& suffix) override;
    void ReplaceBsIdsWithBasedOn(k3::Node* node) override;

    /// kWrongClass unless the source is such an object; there is nothing to copy.
    ResultEnum CopyFrom(const Interface* source, unsigned flags) override;
    const char* GetInterfaceName() const override { return kHierarchyOperationKey; }
    bool IsTypeOf(const char* name) const override;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::HierarchyOperationImpl");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<HierarchyOperationImpl, HierarchyOperation>(this, wanted);
    }
};

}  // namespace qn::graph

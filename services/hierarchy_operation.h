#pragma once

#include "frame/host/extension.h"

namespace qn {

class String;

namespace k3 {
class Node;
}

namespace graph {

/// What is done to the ids, the metadata and the hierarchy links of a node and everything below it. An object
/// that is no node, and null, are left alone. Flags name layers: 1 the definition, 2 its use, 4 the node.
/// Class key "qn.graph.hierarchyoperation".
class HierarchyOperation : public Extension {
public:
    virtual void RemoveIds(Interface* node, unsigned flags) = 0;
    /// Cuts the links to the hierarchy; what is not kept goes with them. The nodes stay.
    virtual void RemoveHierarchyCache(Interface* node, bool keepAllMetadataAsSelectorMetadata,
                                      bool keepSelectorBsIds, bool keepSelectorExternalIds,
                                      bool keepAllMetadataAsEntityMetadata) = 0;
    virtual void UpdateBsIds(Interface* node, const String& modification, unsigned flags, bool asPrefix) = 0;
    /// This node alone, not what is below it.
    virtual void RemoveNodeMetadata(Interface* node, unsigned flags, unsigned reserved,
                                    bool preserveSystemMetadata) = 0;
    /// Counts the node's scene and lets it go again.
    virtual void HoldScene(k3::Node* node) = 0;
    virtual void GenerateBsIds(Interface* node, unsigned flags, const String& prefix,
                               const String& suffix) = 0;
    virtual void ReplaceBsIdsWithBasedOn(k3::Node* node) = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::HierarchyOperation");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<HierarchyOperation, Extension>(this, wanted);
    }
};

}  // namespace graph
}  // namespace qn

#pragma once

#include "frame/host/collections.h"
#include "graph/lookup_table_impl.h"

#include <map>

namespace qn::graph {

/// The viewports around one file load: those that were there, and those that the file brought, which are
/// deleted or wait in the table for their nodes.
class FileViewports {
public:
    FileViewports(LookupTableImpl& table, k3::Scene& scene, Context& context)
        : table_(table), scene_(scene), context_(context) {}

    /// Before the load.
    void RememberPresent();
    /// After the load.
    void CollectNew();
    /// Deletes the new ones, with companions. The index goes up after each removal, so that the one that
    /// moved down stays.
    void DeleteNew();
    /// The new ones of a file with hierarchy: unwanted ones and those of a known name go (the index as in
    /// `DeleteNew`), the others wait. `nodes` are the file's.
    void BindWanted(const k3::Node& node, Reference& target, Instance& root, const NodeToInstance& nodes);
    /// The new ones of a file that brought nodes alone: all wait. `target` and `root` may be null.
    void BindAll(Reference* target, Instance* root, const NodeToInstance& nodes);

private:
    enum class ByBsId { kNo, kYes };

    k3::Viewport* NewAt(int index) const;
    void DeleteAt(int index, int flag);
    bool PointAtTarget(k3::Viewport& viewport, Reference& target);
    void Await(k3::Viewport& viewport, Reference* target, const Instance* root, const NodeToInstance& nodes,
               ByBsId byBsId);
    void AwaitNode(k3::Viewport& viewport, const NodeToInstance& nodes, ByBsId byBsId);
    void AwaitMembers(k3::Layer& layer, Reference* target, const Instance* root, const NodeToInstance& nodes);

    LookupTableImpl& table_;
    k3::Scene& scene_;
    Context& context_;
    Counted<InterfaceArray> present_;
    Counted<InterfaceArray> new_;
    std::map<const Interface*, std::set<String>> names_;  ///< of the viewports by what they belong to
};

}  // namespace qn::graph

#pragma once

#include "frame/host/collections.h"
#include "graph/file_viewports.h"
#include "graph/lookup_table_impl.h"
#include "graph/reference.h"

namespace qn::graph {

/// Turns a node into a reference with the factory; null without one, or on refusal.
Counted<Reference> ReferenceFromNode(k3::Node& node, LookupTable& table, const String& id,
                                     NodeToInstance& nodes, InstanceToNodes& instances);

/// What one load is asked for.
struct FileRequest {
    String file;
    String id;
    Var options;
    Guid importer;
    Reference*
        placeholder;  ///< empty definition that the load fills although its server id is known, or null
};

/// One load of a file into the hierarchy: the scene reads it, its nodes become hierarchy data below one
/// reference and leave the scene again; its layers and views wait in the table.
class FileLoad {
public:
    FileLoad(LookupTableImpl& table, k3::Scene& scene, Context& context, FileRequest request);

    /// The reference, or null with a message in the context. A file that cannot be read gives an empty
    /// reference.
    Counted<Reference> Run();

private:
    k3::Node* LoadNode();
    void UseOptions();
    void RestoreOptions();
    void Report(const char* text);

    Counted<Reference> BindHierarchy(Instance& root, Reference& loaded);
    void PrepareFileTable(Reference& loaded);
    Counted<Reference> FindPresent(const String& bsId) const;
    void CopyProperties(Reference& loaded, Reference& target);
    void MergeMetadata(Reference& target, const Var& metadata);
    Counted<Reference> RegisterUnderPrefix(Reference& target);
    Counted<Reference> BindNodes();

    LookupTableImpl& table_;
    k3::Scene& scene_;
    Context& context_;
    FileRequest request_;
    FileViewports viewports_;
    Counted<k3::Node> node_;
    Counted<LookupTableImpl> fileTable_;  // made here for a file that brought none
    Var savedOptions_;
    Var fileMetadata_;
    NodeToInstance fileNodes_;
    InstanceToNodes fileInstances_;
};

}  // namespace qn::graph

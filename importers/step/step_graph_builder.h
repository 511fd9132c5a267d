#pragma once

#include "frame/host/counted.h"
#include "frame/host/node.h"
#include "graph/lookup_table.h"
#include "graph/reference.h"
#include "importers/step/step_mesh.h"
#include "importers/step/step_model.h"

#include <vector>

namespace qn::step {

/// Turns a product structure into definitions and instances of the host's graph: one `Reference` for
/// each definition, one `Instance` for each use, all registered in one table. A file with one
/// root is that definition; roots of a file with several, or none, stand in a container.
class GraphBuilder {
public:
    explicit GraphBuilder(const StepModel& model) : model_(model) {}

    /// False if the host does not know the classes of the graph.
    bool Build(const String& fileName);
    /// Makes the triangles the target of a definition.
    void SetMesh(std::size_t definition, MeshData mesh);
    /// Gives the node a generator for what was built.
    bool AttachTo(k3::Node& top);

private:
    bool MakeDefinitions();
    bool MakeUses();
    bool MakeRoot(const String& fileName);
    k3::Material* MaterialOf(const Colour& colour);

    const StepModel& model_;
    Counted<graph::LookupTable> table_;
    std::vector<Counted<graph::Reference>> references_;  ///< by definition
    Counted<graph::Reference> root_;
    std::vector<std::pair<Colour, Counted<k3::Material>>> materials_;
};

}  // namespace qn::step

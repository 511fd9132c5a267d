#pragma once

#include "frame/host/counted.h"
#include "frame/host/matrix.h"
#include "frame/host/node.h"
#include "graph/lookup_table.h"
#include "graph/reference.h"
#include "importers/gltf/buffer_store.h"
#include "importers/gltf/gltf_assembly_extras.h"
#include "importers/gltf/gltf_model.h"

#include <string>
#include <vector>

namespace qn::gltf {

/// Turns a checked model into definitions and uses of the host's graph, in one table.
///
/// A mesh is a definition, and each node that shows it and has nothing else is a use of it. Every other node
/// is a definition of its own, used once: groups, empty nodes, those with a camera, and those with a mesh and
/// children, whose definition has the mesh as its content. Copies of a node are uses of its mesh inside of
/// it. The roots stand in a container. A file of our own that says what its nodes stand for gives that
/// instead. Under the option `kInertGenerators` there is no table, and elements have no local ids.
class GraphBuilder {
public:
    /// With `structureOnly` the places of copies are told, not demanded: without their bytes copies stand
    /// where their node does.
    GraphBuilder(const Model& model, BufferStore& store, Context& context, bool structureOnly)
        : model_(model), store_(store), context_(context), structureOnly_(structureOnly) {}

    /// False if the user stopped it. Throws GltfError; kDefect if the classes of the graph cannot be made.
    bool Build(const String& fileName);
    /// Gives the node a generator for what was built.
    void AttachTo(k3::Node& top);

    /// A definition that shows a mesh.
    struct Shown {
        Counted<graph::Reference> definition;
        std::uint32_t mesh;
    };
    const std::vector<Shown>& GetShown() const { return shown_; }
    /// A definition that stands for a node with a camera.
    struct View {
        Counted<graph::Reference> definition;
        std::uint32_t camera;
    };
    const std::vector<View>& GetViews() const { return views_; }
    /// Null where only definitions and uses are wanted.
    graph::LookupTable* GetTable() const { return table_.Get(); }
    /// Millimetres of a unit of the file.
    double GetScale() const { return scale_; }
    /// What the user should know; empty if nothing.
    const std::string& GetWarning() const { return warning_; }

private:
    bool BuildFromNodes(const String& fileName);
    void AddNode(std::uint32_t index, graph::Reference& parent);
    void AddView(graph::Reference& definition, std::uint32_t camera, std::uint32_t node);
    /// One matrix for each copy.
    std::vector<Matrix4<double>> PlacesOfCopies(const Copies& copies, const std::string& pointer);
    void AddCopies(const Node& node, std::uint32_t index, graph::Reference& parent);
    graph::Reference& DefinitionOfMesh(std::uint32_t mesh);
    Counted<graph::Reference> MakeDefinition(const String& name);
    Counted<graph::Instance> MakeUse(graph::Reference& definition, graph::Reference& parent);
    bool Reports();

    /// The children of a node that are still to be made.
    struct Level {
        std::uint32_t next;
        std::uint32_t end;  ///< in `Model::children`
        graph::Reference* definition;
    };

    const Model& model_;
    BufferStore& store_;
    Context& context_;
    bool structureOnly_;
    Counted<graph::LookupTable> table_;
    Counted<graph::Reference> root_;
    Counted<graph::Instance> top_;
    std::vector<Counted<graph::Reference>> byMesh_;
    std::vector<Level> levels_;
    std::vector<Shown> shown_;
    std::vector<View> views_;
    std::size_t made_ = 0;
    double scale_ = 1;
    std::string warning_;
};

}  // namespace qn::gltf

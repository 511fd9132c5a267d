#pragma once

#include "frame/host/counted.h"
#include "graph/instance.h"
#include "graph/lookup_table.h"
#include "graph/reference.h"
#include "importers/gltf/gltf_model.h"

#include <string>
#include <vector>

namespace qn::gltf {

/// Key in the extras of the document and of nodes under which a file that was written from an assembly says
/// what the format itself has no place for; see docs/gltf.md.
inline constexpr const wchar_t* kAssemblyExtras = L"assembly";

/// The hierarchy of such a file, made in a table.
struct AssemblyHierarchy {
    Counted<graph::Reference> root;  ///< the container, else the one root's definition
    Counted<graph::Instance> top;    ///< the root's use; null: one that says nothing
    struct Shown {
        Counted<graph::Reference> definition;
        std::uint32_t mesh;
    };
    std::vector<Shown> shown;  ///< definitions with a mesh; the importer makes it their target, unscaled
};

/// Makes definitions, uses and overrides from the tables in the document's extras. False if there are none,
/// or if the nodes disagree with them, which is said in `warning`: then nothing was made and the nodes count.
/// The model is checked: links lead somewhere, and its nodes are trees.
bool BuildAssembly(const Model& model, graph::LookupTable& table, AssemblyHierarchy& out,
                   std::string& warning);

}  // namespace qn::gltf

#include "importers/gltf/gltf_assembly_extras.h"

namespace qn::gltf {

bool BuildAssembly(const Model&, graph::LookupTable&, AssemblyHierarchy&, std::string&) {
    return false;
}

}  // namespace qn::gltf

#pragma once

#include "frame/host/generator.h"
#include "frame/host/node.h"
#include "frame/host/parameter_ids.h"
#include "graph/instance.h"
#include "graph/reference.h"

namespace qn::graph {

/// The use that the node carries, borrowed, or null.
inline Instance* CarriedInstance(const k3::Node& node) {
    return Cast<Instance>(node.GetParamObject(Param::kInstance));
}

/// The definition that the node's generator makes nodes of, borrowed, or null.
inline Reference* GeneratedReference(const k3::Node& node) {
    const k3::Generator* const generator = k3::Generator::Get(&node);
    return generator ? Cast<Reference>(generator->GetGeneratedRoot()) : nullptr;
}

/// What a material substitution stands for, borrowed; any other object is itself. Fine with null.
inline k3::Object3D* BehindSubstitution(k3::Object3D* object) {
    const auto* const substitution = Cast<k3::MaterialSubstitution>(object);
    return substitution ? substitution->GetSubstituted() : object;
}

}  // namespace qn::graph

#pragma once

#include "frame/host/scene.h"
#include "graph/instance.h"
#include "graph/reference.h"
#include "tests/support/assembly.h"
#include "tests/support/recording_context.h"
#include "tests/support/temp_folder.h"

#include <nlohmann/json.hpp>
#include <set>
#include <string>

namespace qn::test {

/// A scene with the nodes of a shape and the graph behind them. The N-th node of the name "wheel", counted
/// from 1, has the server id "s:wheel.N", the N-th use of the definition "n:wheel.N", the definition
/// "e:wheel". The I-th child stands at x = I in its parent, counted from 1. Nodes without children show a
/// cube of edge 1 from the origin on.
Counted<k3::Scene> SceneOf(const AssemblyShape& shape);
/// The same graph as a file without nodes: a top node with a generator.
String WriteCompactFile(const TempFolder& folder, const char* name, const AssemblyShape& shape);
/// The scene as a file with all its nodes.
String WriteFile(const TempFolder& folder, const char* name, k3::Scene& scene);

/// car(chassis, wheel 4 times(tyre))
AssemblyBuilder Car();

/// The first node of that name in tree order, borrowed, or null.
k3::Node* FindNode(k3::Scene& scene, const char* name);
/// Names of all nodes, in tree order.
std::vector<std::string> NamesOf(const k3::Scene& scene);
/// A map of one group with one entry.
Counted<VarMap> Metadata(const wchar_t* group, const wchar_t* key, const Var& value);

nlohmann::json ReadJson(const String& file);
bool HasFile(const String& file);

}  // namespace qn::test

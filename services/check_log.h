#pragma once

#include "frame/host/string.h"

namespace qn {

class Context;

namespace k3 {
class Layer;
class Node;
}  // namespace k3

namespace graph {

struct NodeFinding;

/// The names under which messages tell of nodes and layers: the own display text, else the name, cut.
String NameInMessages(const k3::Node& node);
String NameInMessages(const k3::Layer& layer);

// Each reports one message; nothing happens without a log.
void LogFinding(const NodeFinding& finding, Context* log);
void LogLostHierarchy(const k3::Node& topLevelNode, Context* log);

/// A message with a count and the name of a layer in place of its markers.
void LogMembers(const char* text, int count, const k3::Layer& layer, Context* log);

}  // namespace graph
}  // namespace qn

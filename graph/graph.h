#pragma once

// Forward declarations of the instance-reference graph.

namespace qn {

class Context;
class Extension;
class Guid;
class InterfaceArray;
class Stream;
class String;
class Var;

namespace k3 {
class Layer;
class Node;
class Scene;
class Viewport;
}  // namespace k3

namespace graph {

class HierarchyElement;
class Instance;
class LookupTable;
class PersistentSelector;
class Reference;
class ResolverCache;
class Selector;

class InstanceImpl;
class LookupTableImpl;
class PersistentSelectorImpl;
class ReferenceImpl;

/// Class keys of the graph, as registered.
namespace ClassKey {
inline constexpr const char* kInstance = "qn.graph.instance";
inline constexpr const char* kReference = "qn.graph.reference";
inline constexpr const char* kPersistentSelector = "qn.graph.persistentselector";
inline constexpr const char* kLookupTable = "qn.graph.lookuptable";
inline constexpr const char* kPostProcessingInstruction = "qn.graph.postprocessinginstruction";
inline constexpr const char* kResolverCache = "qn.graph.resolvercache";
inline constexpr const char* kHierarchyFactory = "qn.graph.hierarchyfactory";
inline constexpr const char* kHierarchyGenerator = "qn.graph.hierarchygenerator";
inline constexpr const char* kHierarchyChecker = "qn.graph.hierarchychecker";
inline constexpr const char* kHierarchyOperation = "qn.graph.hierarchyoperation";
}  // namespace ClassKey

}  // namespace graph
}  // namespace qn

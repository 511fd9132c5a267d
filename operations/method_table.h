#pragma once

namespace qn {

class Context;
class Params;

namespace graph {

class HierarchyOperation;

/// Runs a method by its number: 0 for an unknown one, for a missing scene and behind a closed gate, else what
/// the method answers. The context may be null.
int RunMethod(HierarchyOperation& operation, int methodId, const Params& arguments, Context* context);

}  // namespace graph
}  // namespace qn

#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace qn::test {

/// An assembly as plain data: definitions by number, 0 is the root.
struct AssemblyShape {
    struct Definition {
        std::string name;
        std::vector<int> children;  ///< one definition number for each use, in order
    };
    std::vector<Definition> definitions;
};

/// Nodes of the expanded tree, the root included. Expects a shape without rings.
std::int64_t CountOccurrences(const AssemblyShape& shape);
/// Uses of all definitions that the root reaches.
std::int64_t CountUses(const AssemblyShape& shape);
/// Whether a definition contains itself.
bool IsCyclic(const AssemblyShape& shape);

/// Ten definitions on each level, each of which uses all ten of the next: few uses, many occurrences. Has the
/// most levels that keep it within `occurrences` (11, 111, 1111, ...); at least a root with ten parts.
AssemblyShape SharedShape(std::int64_t occurrences);
/// One root with `occurrences` - 1 parts, each a definition of its own.
AssemblyShape FlatShape(std::int64_t occurrences);
/// A chain of `occurrences` definitions.
AssemblyShape DeepShape(std::int64_t occurrences);

}  // namespace qn::test

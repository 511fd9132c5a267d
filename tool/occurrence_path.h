#pragma once

#include "frame/host/node.h"
#include "tool/occurrence_walk.h"
#include "tool/structure.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace assembly::tool {

// An occurrence is written as the names of the uses from a root down to it: "car/chassis/wheel[2]". A use
// that has no name goes by its definition's. Where siblings go by one name, each has its number among them,
// from 1.
// "/", "[" and "\" within a name stand behind a "\". Overridden names do not count, so a path stays the same.

/// The names of uses in paths, UTF-8, found once for each definition.
class OccurrencePaths {
public:
    /// The structure must live on unchanged.
    explicit OccurrencePaths(const Structure& structure);

    /// The last part of the path of `use`, which stands in the structure: a root, or a use in a definition.
    const std::string& SegmentOf(const Use& use);
    /// The path along `uses`, a root first.
    std::string PathOf(const std::vector<const Use*>& uses);
    /// The uses along a path, a root first. A part may also be the definition's name in place of the use's.
    /// Fails with kUsage if nothing, or more than one sibling, goes by a part of it.
    std::vector<const Use*> Find(std::string_view path) const;

private:
    struct Siblings {
        const Use* first;
        std::size_t count;
    };
    Siblings RootUses() const;
    Siblings UsesOf(std::uint32_t definition) const;
    std::uint32_t OwnerOf(std::size_t use) const;

    const Structure& structure_;
    std::vector<std::string> roots_;
    std::vector<std::string> segments_;  // by use; empty: not known yet
    std::vector<std::uint32_t> owners_;  // definitions that have uses, by their first use
};

/// The path of the present occurrence of a walk, kept up with one step for each visit.
class PathOfWalk {
public:
    explicit PathOfWalk(const Structure& structure) : paths_(structure) {}
    /// Call it for each occurrence visited; valid until the next call.
    const std::string& At(const Occurrence& occurrence);

private:
    OccurrencePaths paths_;
    std::string text_;
    std::vector<std::size_t> ends_;  // length of `text_` for each level
};

/// The same form for nodes of a scene, or of a structure that is not shown. Each node goes by its instance,
/// or by its own name if it has none. The tree must not change meanwhile.
class NodePaths {
public:
    std::string PathOf(const qn::k3::Node& node);

private:
    std::unordered_map<const qn::k3::Node*, std::string> segments_;
};

/// The names as parts of paths: escaped, with numbers where several are the same.
std::vector<std::string> PathSegments(const std::vector<std::string>& names);

}  // namespace assembly::tool

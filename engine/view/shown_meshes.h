#pragma once

#include "frame/host/layer.h"
#include "frame/host/scene_document.h"

#include <unordered_set>
#include <vector>

namespace qn::view {

/// Which nodes a view shows: the members of its layer with everything below them, or the whole scene where it
/// has no layer with nodes in it. Hidden nodes, and what is below them, are not shown.
class ShownNodes {
public:
    ShownNodes(k3::Scene& scene, const k3::Viewport& viewport);

    /// Calls `visit(const k3::Mesh&, const Matrix4<double>& toWorld)` for each shown mesh, parents first.
    template <class Visit>
    void VisitMeshes(Visit&& visit) const {
        std::vector<Level> levels;
        for (k3::Node* node = Enter(levels, &scene_, false, {}); !levels.empty(); node = Next(levels))
            if (const k3::Mesh* const mesh = node ? MeshOf(*node, levels.back()) : nullptr)
                visit(*mesh, ContentPlace(*node, levels.back().toWorld));
    }

private:
    struct Level {
        k3::Node* next;  ///< the child whose turn it is
        Matrix4<double> toWorld;
        bool shown;
    };

    k3::Node* Enter(std::vector<Level>& levels, k3::Node* node, bool shown,
                    const Matrix4<double>& toWorld) const;
    k3::Node* Next(std::vector<Level>& levels) const;
    static const k3::Mesh* MeshOf(const k3::Node& node, const Level& level);
    static Matrix4<double> ContentPlace(const k3::Node& node, const Matrix4<double>& toWorld);

    k3::Scene& scene_;
    std::unordered_set<const k3::Node*> members_;  // empty: all
};

}  // namespace qn::view

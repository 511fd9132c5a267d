#pragma once

#include "frame/host/node.h"
#include "frame/host/scene_document.h"
#include "graph/instance.h"
#include "tool/session.h"

#include <vector>

namespace assembly::tool {

/// The stored nodes of a scene that show definitions which name files, and have no content yet.
class PlaceholderNodes {
public:
    /// Expects that no content of the files came in so far. Costs by nodes.
    explicit PlaceholderNodes(qn::k3::Scene& scene);

    bool IsEmpty() const { return nodes_.empty(); }
    /// Makes the content of those whose definitions got some since. What a node said otherwise than its
    /// instance before, it goes on to say. Files that are still named are not opened. Fails with kLimit or
    /// kDefect.
    void Fill(Session& session, qn::k3::Scene& scene) const;

private:
    struct Placeholder {
        qn::Counted<qn::k3::Node> node;
        std::vector<qn::Counted<qn::graph::Instance>> path;  ///< from the top to the node's own
        qn::Var own;  ///< what the node says otherwise: values by property
    };
    static bool Note(qn::k3::Node* node, qn::ParamWord self);
    void FillOne(const Placeholder& placeholder) const;

    std::vector<Placeholder> nodes_;
};

}  // namespace assembly::tool

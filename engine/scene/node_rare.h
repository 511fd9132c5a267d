#pragma once

#include "frame/host/node.h"

#include <memory>
#include <utility>
#include <vector>

namespace qn::k3 {

/// What was below a node when its generator had just made it; see generated_content.h.
struct GeneratedMark {
    std::uint32_t epoch = 0;        ///< nodes changed later than this have a higher stamp
    std::uint64_t fingerprint = 0;  ///< of values that can be edited without the node's knowledge
};

/// Fields that few nodes have.
struct Node::Rare {
    std::unique_ptr<Matrix4<double>> ownMatrix;    // null: identity
    std::unique_ptr<Matrix4<double>> thirdMatrix;  // null: identity
    String displayName;
    String text;
    float opacity = 1.0f;
    int integerAttribute = 0;
    std::vector<std::pair<int, Counted<Track>>> tracks;
    std::unique_ptr<GeneratedMark> generated;
    bool childrenStored = false;  // the children are what they are, not what the generator would make
};

/// The first children by index. Always a prefix of the chain without the first `front` entries; grows when
/// asked for more.
struct Node::ChildIndex {
    std::vector<Node*> nodes;
    std::size_t front = 0;  // entries before it left the chain
    std::size_t lastAsked = 0;

    std::size_t Count() const { return nodes.size() - front; }
    void Clear() { nodes.clear(), front = 0, lastAsked = 0; }
    /// Keeps what stays right when `child` leaves the chain.
    void Forget(const Node* child);
};

}  // namespace qn::k3

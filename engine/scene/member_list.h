#pragma once

#include "frame/host/collections.h"
#include "frame/host/node.h"

#include <unordered_map>
#include <vector>

namespace qn::k3 {

/// A `PointerArray` of nodes with an index by node, so that members are found, added and removed in constant
/// time. Removed members leave holes until the array is asked for.
class MemberList {
public:
    explicit MemberList(Counted<PointerArray> array) : array_(std::move(array)) {}

    /// The array without holes, borrowed.
    PointerArray* Array();
    /// False if it is a member already.
    bool Add(Node* node);
    /// Appends what is no node.
    void AddStranger(Interface* object);
    /// The first entry of the node, if somebody added more to the array. False if it is no member.
    bool Remove(Node* node);
    bool Has(Node* node) { return Find(node) >= 0; }
    void Clear();

private:
    int Find(Node* node);
    void Index();
    void Compact();
    void IndexTwin(Node* node);

    Counted<PointerArray> array_;
    std::unordered_map<const Interface*, int> places_;              // the first of each
    std::unordered_map<const Interface*, std::vector<int>> twins_;  // further ones, last first; mostly empty
    std::vector<int> holes_;
    int indexed_ = -1;  // the array's size when it was indexed
};

}  // namespace qn::k3

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
    /// False if it is no member.
    bool Remove(Node* node);
    bool Has(Node* node) { return Find(node) >= 0; }
    void Clear();

private:
    int Find(Node* node);
    void Index();
    void Compact();

    Counted<PointerArray> array_;
    std::unordered_map<const Interface*, int> places_;
    std::vector<int> holes_;
    int indexed_ = -1;  // the array's size when it was indexed
};

}  // namespace qn::k3

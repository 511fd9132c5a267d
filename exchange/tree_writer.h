#pragma once

#include "exchange/json_writer.h"
#include "exchange/value_writer.h"
#include "frame/host/node.h"
#include "graph/instance.h"
#include "graph/reference.h"

#include <limits>
#include <unordered_map>
#include <vector>

namespace qn::exchange {

/// What a written tree holds.
struct TreeOptions {
    static constexpr int kAllLevels = std::numeric_limits<int>::max();
    int levels = kAllLevels;  ///< 1: the top nodes alone
    bool matrices = false;    ///< of selectors, where they are not the identity
    bool metadata = true;
    bool externalIds = true;
};

/// Writes scene nodes and the elements behind them as three fields of the open object: "selectors" (one row
/// for each scene node, parents first), "nodes" (their instances) and "entities" (the references of these).
/// Rows name one another by number, so that shared elements stand there once and depth costs nothing.
class TreeWriter {
public:
    TreeWriter(JsonWriter& json, ValueWriter& values, const TreeOptions& options)
        : json_(json), values_(values), options_(options) {}

    /// The trees of these nodes, in order.
    void Write(const std::vector<k3::Node*>& tops);

private:
    template <class Element>
    struct Table {
        std::vector<Element*> elements;
        std::unordered_map<const Element*, std::size_t> numbers;
        /// The element's number, a new one when it is first met.
        std::size_t NumberOf(Element* element);
    };

    void WriteSelectors(const std::vector<k3::Node*>& tops);
    void WriteTree(k3::Node* top);
    void WriteSelector(k3::Node& node);
    void WriteNodes();
    void WriteEntities();
    void WriteElement(const graph::HierarchyElement& element);
    void WriteData(const Var& bsId, const Var& externalIds, const Var& metadata);

    JsonWriter& json_;
    ValueWriter& values_;
    TreeOptions options_;
    std::vector<std::int64_t> path_;  // numbers of the selectors above the present one
    std::int64_t nextSelector_ = 0;
    Table<graph::Instance> instances_;
    Table<graph::Reference> references_;
};

}  // namespace qn::exchange

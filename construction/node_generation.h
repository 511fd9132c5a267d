#pragma once

#include "construction/descent.h"
#include "construction/met_instances.h"
#include "construction/occurrence_budget.h"
#include "frame/host/selector.h"
#include "graph/instance.h"
#include "graph/limits.h"

#include <vector>

namespace qn::graph {

/// One run from hierarchy to scene: a node for each occurrence below a selector, parents first, children in
/// order. A definition within itself gets its node and no children. Past the limit the run stops, with what
/// it made left as it is, and reports to the context of the selector's table. It stops, too, when that
/// context is cancelled.
class NodeGeneration {
public:
    explicit NodeGeneration(std::int64_t limit = kMaxOccurrences) : budget_(limit) {}

    /// The traverser of the node made for the selector; `start` itself where the definition lies elsewhere;
    /// or null.
    Counted<Selector::Traverser> Run(const Selector& selector, Selector::Traverser* start);

private:
    using Position = Counted<Selector::Traverser>;
    struct Place {
        std::size_t size;  ///< elements of `path_`
        std::size_t base;  ///< where the present path starts in it
    };
    struct Level {
        Selector source;
        Position node;
        Counted<Reference> reference;  ///< entered with this level, or null
        String file;                   ///< the same, or empty
        Place outside;
        unsigned next = 0;
        unsigned count = 0;
    };

    Position Enter(const Selector& source, Instance& instance, const Position& parent, Place outside);
    Position EnterHere(const Selector& source, Instance& instance, const Position& parent, Place outside,
                       const String& file);
    Position MakeNode(const Selector& source, Instance& instance, const Position& parent);
    bool EnterLevel(const Selector& source, Instance& instance, const Position& node, Place outside,
                    const String& file);
    void LeaveLevel();
    void Restore(Place place);
    void ReportLimit(Context& context) const;

    OccurrenceBudget budget_;
    MetInstances met_;
    unsigned state_ = 0;  ///< of the hierarchy; counts what adoptions may have changed
    Descent descent_;
    std::vector<Instance*>
        path_;  ///< of all levels; a definition that lies elsewhere starts a path of its own
    std::size_t base_ = 0;
    std::vector<Level> levels_;
};

}  // namespace qn::graph

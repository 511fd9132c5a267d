#include "construction/node_generation.h"

#include "construction/linked_reference.h"
#include "construction/property_copy.h"
#include "frame/host/context.h"
#include "frame/host/translate.h"
#include "graph/lookup_table.h"
#include "graph/reference.h"

namespace qn::graph {
namespace {

/// Borrowed, or null.
Context* ContextOf(const Selector& selector) {
    const LookupTable* const table = selector.GetLookupTable();
    return table ? table->GetContext() : nullptr;
}

}  // namespace

Counted<Selector::Traverser> NodeGeneration::Run(const Selector& selector, Selector::Traverser* start) {
    const Counted<Instance> instance(selector.GetInstance());
    if (!start || !instance) return {};
    const Counted<Context> context(ContextOf(selector));
    const int length = selector.GetPathElementCount();
    for (int index = 0; index < length; ++index)
        path_.push_back(selector.GetPathElement(static_cast<unsigned>(index)));
    Position result = Enter(selector, *instance, Position(start), {0, 0});
    while (!levels_.empty()) {
        Level& level = levels_.back();
        if (level.next == level.count || budget_.IsExceeded() || (context && context->IsCancelled())) {
            LeaveLevel();
            continue;
        }
        const Selector child = level.source.GetChild(level.next++);
        const Counted<Instance> childInstance(child.GetInstance());
        if (!childInstance) continue;
        const Place outside{path_.size(), base_};
        path_.push_back(childInstance.Get());
        Enter(child, *childInstance, Position(level.node), outside);
    }
    if (budget_.IsExceeded() && context) ReportLimit(*context);
    return result;
}

/// Where the definition lies elsewhere, the walk goes on with the instance alone, once, whatever the reload
/// brought.
NodeGeneration::Position NodeGeneration::Enter(const Selector& source, Instance& instance,
                                               const Position& parent, Place outside) {
    const Reference* const reference = instance.GetReference();
    if (!reference || reference->HasNoTargetLink())
        return EnterHere(source, instance, parent, outside, String());
    const String file = FileOf(*reference);
    AdoptLinkedReference(source, descent_, budget_);
    ++state_;
    Selector alone;
    alone.AppendPathElement(&instance);
    base_ = path_.size();
    path_.push_back(&instance);
    EnterHere(alone, instance, parent, outside, file);
    return parent;
}

NodeGeneration::Position NodeGeneration::EnterHere(const Selector& source, Instance& instance,
                                                   const Position& parent, Place outside,
                                                   const String& file) {
    Position node = MakeNode(source, instance, parent);
    if (!node || !EnterLevel(source, instance, node, outside, file)) Restore(outside);
    return node;
}

NodeGeneration::Position NodeGeneration::MakeNode(const Selector& source, Instance& instance,
                                                  const Position& parent) {
    if (!budget_.Take()) return {};
    Position node = parent->CreateChild(&instance);
    if (!node) return node;
    MetInstance& met = met_.Of(&instance);
    met.CopyTo(*node, source, state_);
    if (const SelectorsByPath* const selectors = met.GetSelectors())
        selectors->ForEachMatch(std::span(path_).subspan(base_), [&](const Selector& match) {
            CopyProperties(match, *node, CopySource::kSelector, false);
        });
    return node;
}

/// False if there is nothing below. Nodes that are walked end by themselves; definitions might not.
bool NodeGeneration::EnterLevel(const Selector& source, Instance& instance, const Position& node,
                                Place outside, const String& file) {
    const int count = source.GetChildCount();
    if (count <= 0) return false;
    Level level{source, node, {}, {}, outside, 0, static_cast<unsigned>(count)};
    if (Reference* const reference = instance.GetReference(); reference && !source.GetTraverser()) {
        if (!descent_.Enter(reference)) return false;
        level.reference = Counted<Reference>(reference);
        if (descent_.EnterFile(file)) level.file = file;
    }
    levels_.push_back(std::move(level));
    return true;
}

void NodeGeneration::LeaveLevel() {
    const Level& level = levels_.back();
    if (level.reference) descent_.Leave(level.reference.Get());
    if (level.file.NonEmpty()) descent_.LeaveFile(level.file);
    Restore(level.outside);
    levels_.pop_back();
}

void NodeGeneration::Restore(Place place) {
    path_.resize(place.size);
    base_ = place.base;
}

void NodeGeneration::ReportLimit(Context& context) const {
    context.Fail(LoadFailure::kLimit,
                 Translate("assembly", "The hierarchy has more than %1 occurrences. The rest is left out.",
                           "XMSG: Error message", -1)
                     .Arg(budget_.GetLimit()));
}

}  // namespace qn::graph

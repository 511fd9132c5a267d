#include "construction/met_instances.h"

namespace qn::graph {

namespace {

/// Whether all that the selector says is said by its instance.
bool IsPlain(const Selector& selector) {
    return !selector.GetTraverser() && selector.GetAttributes().IsEmpty();
}

}  // namespace

MetInstance::MetInstance(Instance* instance) : instance_(instance) {
    if (instance->GetSelectorCount() > 0) selectors_ = std::make_unique<SelectorsByPath>(instance);
}

void MetInstance::CopyTo(Selector::Traverser& target, const Selector& source, unsigned state) {
    if (!IsPlain(source) || !KnowsValues(state)) {
        CopyProperties(source, target, CopySource::kPath, false);
        return;
    }
    if (met_ == Met::kOnce) values_ = ReadProperties(source, CopySource::kPath);
    met_ = Met::kOften;
    WriteProperties(source, values_, target);
}

/// Values are kept from the second time on: most instances are met once.
bool MetInstance::KnowsValues(unsigned state) {
    if (state_ != state) met_ = Met::kNever;
    state_ = state;
    if (met_ != Met::kNever) return true;
    met_ = Met::kOnce;
    return false;
}

}  // namespace qn::graph

#include "tool/definition_check.h"

#include "construction/hierarchy_factory.h"
#include "frame/host/api.h"
#include "graph/persistent_selector.h"
#include "graph/stored_selectors.h"
#include "tool/definition_roots.h"
#include "tool/element_names.h"
#include "tool/failure.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace assembly::tool {
namespace {

using qn::Counted;
using qn::Var;
using qn::graph::Instance;
using qn::graph::PersistentSelector;
using qn::graph::Reference;
using qn::graph::Selector;

/// A stored selector that waits until all uses are known.
struct PendingOverride {
    DefinitionFault place;
    Var stored;
};

/// One walk over all definitions, each once, users first.
class DefinitionWalk {
public:
    void Run(const DefinitionRoot& root) {
        tops_.insert(root.definition.Get());
        if (states_.contains(root.definition.Get())) return;
        rootPath_ = root.path;
        Open(root.definition);
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next == level.definition->GetChildCount()) {
                states_[level.definition.Get()] = State::kDone;
                levels_.pop_back();
                continue;
            }
            const int child = level.next++;
            Take(level.definition, child, level.definition->GetChild(child));
        }
    }

    std::vector<DefinitionFault> Finish() {
        for (PendingOverride& pending : overrides_)
            if (!MatchesAny(pending)) faults_.push_back(std::move(pending.place));
        return std::move(faults_);
    }

private:
    enum class State { kOpen, kDone };
    struct Level {
        Counted<Reference> definition;
        int next = 0;
    };

    void Open(Counted<Reference> definition) {
        states_.emplace(definition.Get(), State::kOpen);
        levels_.push_back({std::move(definition)});
    }

    /// One use. The level may be gone afterwards.
    void Take(const Counted<Reference>& owner, int child, const Counted<Instance>& use) {
        Reference* const used = use ? use->GetReference() : nullptr;
        if (!used) return Add(FindingKind::kUseWithoutDefinition, owner, child, use);
        if (use->GetSelectorCount() > 0) AddOverrides(owner, child, use);
        const auto known = states_.find(used);
        if (known == states_.end())
            Open(Counted<Reference>(used));
        else if (known->second == State::kOpen)
            Add(FindingKind::kCircularDefinition, owner, child, use);
    }

    DefinitionFault FaultAt(FindingKind kind, const Counted<Reference>& owner, int child,
                            const Counted<Instance>& use) {
        return {kind, PresentPath(), owner, child, use, Var()};
    }

    void Add(FindingKind kind, const Counted<Reference>& owner, int child, const Counted<Instance>& use) {
        faults_.push_back(FaultAt(kind, owner, child, use));
    }

    void AddOverrides(const Counted<Reference>& owner, int child, const Counted<Instance>& use) {
        const auto* const stored = qn::Cast<qn::graph::StoredSelectors>(use.Get());
        if (!stored) return;
        const DefinitionFault place = FaultAt(FindingKind::kOverrideWithoutOccurrence, owner, child, use);
        for (int i = 0; i < stored->size(); ++i) {
            overrides_.push_back({place, stored->ValueAt(i)});
            overrides_.back().place.selector = stored->KeyAt(i);
        }
    }

    /// Of the use that was taken last.
    std::string PresentPath() {
        std::string path = rootPath_;
        for (const Level& level : levels_)
            path += (path.empty() ? "" : "/") + segments_.Of(*level.definition, level.next - 1);
        return path;
    }

    /// A path may start at any use below a root, or at one of the root itself.
    bool MatchesAny(const PendingOverride& pending) {
        auto* const stored = qn::Cast<PersistentSelector>(pending.stored);
        if (!stored) return true;
        const Selector selector = Factory().SelectorFromPersistent(stored);
        const int count = selector.GetPathElementCount();
        if (count == 0) return !selector.GetAttributes().IsSet();
        if (selector.GetPathElement(static_cast<unsigned>(count - 1)) != pending.place.use.Get())
            return false;
        for (int i = 0; i < count; ++i)
            if (!IsStep(selector, i)) return false;
        return true;
    }

    bool IsStep(const Selector& selector, int index) {
        Instance* const use = selector.GetPathElement(static_cast<unsigned>(index));
        if (!use || !use->GetReference()) return false;
        if (index == 0) return tops_.contains(use->GetReference()) || IsKnownUse(use);
        const Instance* const above = selector.GetPathElement(static_cast<unsigned>(index - 1));
        return above->GetReference()->HasChild(use);
    }

    bool IsKnownUse(const Instance* use) {
        if (uses_.empty())
            for (const auto& [definition, state] : states_)
                for (int i = 0; i < definition->GetChildCount(); ++i)
                    uses_.insert(definition->GetChild(i).Get());
        return uses_.contains(use);
    }

    qn::graph::HierarchyFactory& Factory() {
        if (!factory_)
            factory_ = qn::CreateAs<qn::graph::HierarchyFactory>(qn::graph::ClassKey::kHierarchyFactory);
        if (!factory_) throw Failure(ExitCode::kDefect, "the hierarchy factory cannot be made");
        return *factory_;
    }

    std::string rootPath_;
    std::vector<Level> levels_;
    std::unordered_map<const Reference*, State> states_;
    std::unordered_set<const Reference*> tops_;
    std::unordered_set<const Instance*> uses_;  // filled when first asked for
    std::vector<DefinitionFault> faults_;
    std::vector<PendingOverride> overrides_;
    UseSegments segments_;
    Counted<qn::graph::HierarchyFactory> factory_;
};

std::string QuotedName(const Reference* definition) {
    return "\"" + NameOfElement(definition) + "\"";
}

/// Leaves no gap behind: walks go from 0 up.
void RemoveSelectors(qn::graph::StoredSelectors& stored, const std::vector<Var>& keys) {
    Var kept;
    kept.InitMap();
    int next = 0;
    for (int i = 0; i < stored.size(); ++i) {
        const Var key = stored.KeyAt(i);
        if (std::find(keys.begin(), keys.end(), key) != keys.end()) continue;
        const Var value = stored.ValueAt(i);
        (key.IsText() ? kept.At(key) : kept.At(next++)) = value;
    }
    stored = kept.size() > 0 ? kept : Var();
}

}  // namespace

std::vector<DefinitionFault> CheckDefinitions(qn::k3::Scene& scene) {
    DefinitionWalk walk;
    for (const DefinitionRoot& root : DefinitionRoots(scene))
        walk.Run(root);
    return walk.Finish();
}

std::string MessageOf(const DefinitionFault& fault) {
    const std::string owner = QuotedName(fault.definition.Get());
    switch (fault.kind) {
        case FindingKind::kCircularDefinition:
            return "the definition " + QuotedName(fault.use->GetReference()) + " contains itself, through " +
                   owner;
        case FindingKind::kUseWithoutDefinition:
            return "a use in the definition " + owner + " has no definition of its own";
        default:
            return "an override of this use matches no occurrence";
    }
}

void RepairDefinitions(const std::vector<DefinitionFault>& faults) {
    std::unordered_map<Instance*, std::vector<Var>> overrides;
    std::vector<const DefinitionFault*> uses;
    for (const DefinitionFault& fault : faults) {
        if (fault.kind == FindingKind::kOverrideWithoutOccurrence)
            overrides[fault.use.Get()].push_back(fault.selector);
        else
            uses.push_back(&fault);
    }
    for (const auto& [use, keys] : overrides)
        if (auto* const stored = qn::Cast<qn::graph::StoredSelectors>(use)) RemoveSelectors(*stored, keys);
    // From the last place on, so that the places before it stay what they are.
    std::stable_sort(uses.begin(), uses.end(), [](const DefinitionFault* left, const DefinitionFault* right) {
        return left->child > right->child;
    });
    for (const DefinitionFault* const fault : uses)
        fault->definition->RemoveChildAt(fault->child);
}

}  // namespace assembly::tool

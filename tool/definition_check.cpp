#include "tool/definition_check.h"

#include "construction/hierarchy_factory.h"
#include "engine/stream/pointer_index.h"
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

/// One walk over all definitions, each once, users first. They must not change meanwhile.
class DefinitionWalk {
public:
    explicit DefinitionWalk(const std::vector<DefinitionRoot>& roots) : roots_(roots) {
        for (std::size_t i = 0; i < roots.size(); ++i)
            Run(*roots[i].definition, static_cast<int>(i));
    }

    /// What was found, overrides last.
    std::vector<DefinitionFault> Finish() {
        for (PendingOverride& pending : overrides_)
            if (!MatchesAny(pending)) faults_.push_back(std::move(pending.place));
        for (DefinitionFault& fault : faults_)
            fault.path = PathOf(index_.Find(fault.definition.Get()), fault.child);
        return std::move(faults_);
    }

private:
    static constexpr std::uint32_t kNone = qn::PointerIndex::kNone;

    /// A definition with uses of others, and how it was met first.
    struct Met {
        Reference* definition;
        std::uint32_t owner;  ///< kNone: as a root
        int child;            ///< the use in the owner, or the number of the root
        int next = 0;         ///< the use to be looked at
        bool isOpen = true;
    };

    void Run(Reference& root, int number) {
        tops_.insert(&root);
        if (index_.Find(&root) == kNone) Open(root, kNone, number);
        while (!open_.empty()) {
            Met& met = met_[open_.back()];
            if (met.next == met.definition->GetChildCount()) {
                met.isOpen = false;
                open_.pop_back();
            } else {
                const int child = met.next++;
                Take(open_.back(), child, met.definition->GetChild(child));
            }
        }
    }

    void Open(Reference& definition, std::uint32_t owner, int child) {
        const auto number = static_cast<std::uint32_t>(met_.size());
        index_.Insert(&definition, number);
        met_.push_back({&definition, owner, child});
        open_.push_back(number);
    }

    void Take(std::uint32_t owner, int child, const Counted<Instance>& use) {
        Reference* const used = use ? use->GetReference() : nullptr;
        if (!used) return Add(FindingKind::kUseWithoutDefinition, owner, child, use);
        if (use->GetSelectorCount() > 0) AddOverrides(owner, child, use);
        if (used->GetChildCount() == 0) return;
        const std::uint32_t known = index_.Find(used);
        if (known == kNone)
            Open(*used, owner, child);
        else if (met_[known].isOpen)
            Add(FindingKind::kCircularDefinition, owner, child, use);
    }

    DefinitionFault FaultAt(FindingKind kind, std::uint32_t owner, int child,
                            const Counted<Instance>& use) const {
        return {kind, std::string(), Counted<Reference>(met_[owner].definition), child, use, Var()};
    }

    void Add(FindingKind kind, std::uint32_t owner, int child, const Counted<Instance>& use) {
        faults_.push_back(FaultAt(kind, owner, child, use));
    }

    void AddOverrides(std::uint32_t owner, int child, const Counted<Instance>& use) {
        const auto* const stored = qn::Cast<qn::graph::StoredSelectors>(use.Get());
        for (int i = 0; stored && i < stored->size(); ++i) {
            overrides_.push_back(
                {FaultAt(FindingKind::kOverrideWithoutOccurrence, owner, child, use), stored->ValueAt(i)});
            overrides_.back().place.selector = stored->KeyAt(i);
        }
    }

    /// Of the first occurrence of a use.
    std::string PathOf(std::uint32_t owner, int child) {
        std::vector<const std::string*> parts;
        for (; owner != kNone; child = met_[owner].child, owner = met_[owner].owner)
            parts.push_back(&segments_.Of(*met_[owner].definition, child));
        std::string path = roots_[static_cast<std::size_t>(child)].path;
        for (auto part = parts.rbegin(); part != parts.rend(); ++part)
            path += (path.empty() ? "" : "/") + **part;
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
            for (const Met& met : met_)
                for (int i = 0; i < met.definition->GetChildCount(); ++i)
                    uses_.insert(met.definition->GetChild(i).Get());
        return uses_.contains(use);
    }

    qn::graph::HierarchyFactory& Factory() {
        if (!factory_)
            factory_ = qn::CreateAs<qn::graph::HierarchyFactory>(qn::graph::ClassKey::kHierarchyFactory);
        if (!factory_) throw Failure(ExitCode::kDefect, "the hierarchy factory cannot be made");
        return *factory_;
    }

    const std::vector<DefinitionRoot>& roots_;
    std::vector<Met> met_;
    std::vector<std::uint32_t> open_;  // the present descent
    qn::PointerIndex index_;           // of `met_` by definition
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
    const std::vector<DefinitionRoot> roots = DefinitionRoots(scene);
    return DefinitionWalk(roots).Finish();
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

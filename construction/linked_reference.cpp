#include "construction/linked_reference.h"

#include "graph/reference.h"

#include <vector>

namespace qn::graph {

namespace {

struct Level {
    Selector source;
    Counted<Reference> reference;
    String file;  // entered with this level
    unsigned next = 0;
    unsigned count = 0;
};

class Adoption {
public:
    Adoption(Descent& descent, OccurrenceBudget& budget) : descent_(descent), budget_(budget) {}

    void Run(const Selector& selector) {
        Adopt(selector);
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next == level.count || budget_.IsExceeded()) {
                Leave();
                continue;
            }
            const Selector child = level.source.GetChild(level.next++);
            Instance* const instance = child.GetInstance();
            if (!instance) continue;
            level.reference->AddChild(instance);
            Adopt(child);
        }
    }

private:
    void Adopt(const Selector& source) {
        const Counted<Instance> instance(source.GetInstance());
        if (!instance || !budget_.Take()) return;
        const Counted<Reference> reference(instance->GetReference());
        const bool enters = reference && !descent_.IsInside(reference.Get());
        if (enters && !reference->HasNoTargetLink()) Reload(*reference);
        instance->SetProperty(Prop::kName, source.GetProperty(Prop::kName, 1));
        instance->AddSelector(source);
        if (enters) Enter(source, reference);
    }

    void Reload(Reference& reference) {
        if (!descent_.IsInsideFile(FileOf(reference))) reference.ReloadExternalTarget();
    }

    void Enter(const Selector& source, const Counted<Reference>& reference) {
        const int count = source.GetChildCount();
        if (count <= 0) return;
        const String file = FileOf(*reference);
        descent_.Enter(reference.Get());
        levels_.push_back(
            {source, reference, descent_.EnterFile(file) ? file : String(), 0, static_cast<unsigned>(count)});
    }

    void Leave() {
        const Level& level = levels_.back();
        descent_.Leave(level.reference.Get());
        if (level.file.NonEmpty()) descent_.LeaveFile(level.file);
        levels_.pop_back();
    }

    Descent& descent_;
    OccurrenceBudget& budget_;
    std::vector<Level> levels_;
};

}  // namespace

Counted<Instance> AdoptLinkedReference(const Selector& selector, Descent& descent, OccurrenceBudget& budget) {
    Counted<Instance> instance(selector.GetInstance());
    Adoption(descent, budget).Run(selector);
    return instance;
}

}  // namespace qn::graph

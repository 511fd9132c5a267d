#include "construction/linked_reference.h"

#include "graph/reference.h"

#include <vector>

namespace qn::graph {

namespace {

struct Level {
    Selector source;
    Counted<Reference> reference;  ///< takes the children
    Counted<Reference> walked;     ///< has them; another one if the reload put it in the place of the first
    String file;                   ///< entered with this level, or empty
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
        const String file = enters ? FileOf(*reference) : String();
        if (enters && !reference->HasNoTargetLink() && !descent_.IsInsideFile(file))
            reference->ReloadExternalTarget();
        instance->SetProperty(Prop::kName, source.GetProperty(Prop::kName, 1));
        instance->AddSelector(source);
        if (enters) Enter(source, reference, file);
    }

    void Enter(const Selector& source, const Counted<Reference>& reference, const String& file) {
        const Counted<Reference> walked(source.GetReference());
        const int count = source.GetChildCount();
        if (count <= 0 || !walked || !descent_.Enter(walked.Get())) return;
        levels_.push_back({source, reference, walked, descent_.EnterFile(file) ? file : String(), 0,
                           static_cast<unsigned>(count)});
    }

    void Leave() {
        const Level& level = levels_.back();
        descent_.Leave(level.walked.Get());
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

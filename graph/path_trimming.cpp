#include "graph/path_trimming.h"

#include "frame/host/collections.h"
#include "graph/instance_impl.h"
#include "graph/persistent_selector_impl.h"
#include "graph/reference.h"

#include <vector>

namespace qn::graph {

namespace {

void Trim(PersistentSelectorImpl& selector, const Instance* root) {
    auto& path = selector.path;
    if (path.size() > 1 && path.front().Get() == root) path.erase(path.begin());
}

void TrimLinks(const HierarchyElement& element, const Instance* root) {
    if (const auto link = LinkOf(element)) Trim(*link, root);
    for (const auto& link : ListedLinksOf(element))
        Trim(*link, root);
}

}  // namespace

void TrimSelectorsOf(Instance* element, Instance* root) {
    if (!element || !root) return;
    TrimLinks(*element, root);
    const auto* instance = Cast<InstanceImpl>(element);
    const VarMap* selectors = instance ? instance->Selectors().ToMap() : nullptr;
    for (int i = 0; selectors && i < selectors->GetCount(); ++i) {
        auto* selector = Cast<PersistentSelectorImpl>(selectors->ValueAt(i));
        if (!selector) continue;
        Trim(*selector, root);
        TrimLinks(*selector, root);
    }
}

void TrimSelectorPaths(Instance* root, Reference* reference, std::set<Reference*>& visited) {
    struct Level {
        Counted<Reference> reference;
        int next = 0;
    };
    std::vector<Level> descent;
    if (reference) descent.push_back({Counted<Reference>(reference)});
    while (!descent.empty()) {
        Level& level = descent.back();
        if (level.next == level.reference->GetChildCount()) {
            descent.pop_back();
            continue;
        }
        const Counted<Instance> child = level.reference->GetChild(level.next++);
        if (!child) continue;
        TrimSelectorsOf(child.Get(), root);
        Reference* below = child->GetReference();
        if (below && visited.insert(below).second) descent.push_back({Counted<Reference>(below)});
    }
}

}  // namespace qn::graph

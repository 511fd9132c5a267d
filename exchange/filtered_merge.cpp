#include "exchange/filtered_merge.h"

#include "engine/scene/generated_content.h"
#include "engine/scene/tree_walk.h"
#include "frame/host/api.h"
#include "graph/instance.h"
#include "graph/lookup_table.h"
#include "graph/node_content.h"

#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace qn::exchange {
namespace {

constexpr unsigned kLoadFlags = 0x800002a;
constexpr int kMessageLevel = 2;

/// The filter of the context as a look-up table reads it.
class Filter {
public:
    Filter(k3::Scene& scene, Context& context)
        : table_(CreateAs<graph::LookupTable>(graph::ClassKey::kLookupTable)) {
        if (!table_) return;
        table_->SetSceneAndContext(&scene, &context);
        table_->ReadIdFilter();
    }
    explicit operator bool() const { return static_cast<bool>(table_); }

    bool Wants(const k3::Node& node) const {
        auto* instance = graph::CarriedInstance(node);
        if (instance && table_->IsElementAllowed(instance)) return true;
        const String path = node.GetParamVar(Param::kBsId).ToText();
        return path.NonEmpty() && table_->IsPathAllowed(path);
    }

private:
    Counted<graph::LookupTable> table_;
};

/// What a load adds to a scene beside its top node: views, and the cameras that these look through.
class AddedViews {
public:
    explicit AddedViews(k3::Scene& scene) : scene_(scene) {
        const auto present = scene.GetAllViewports();
        for (int i = 0; i < present->GetCount(); ++i)
            known_.insert(present->Get(i));
        for (const k3::Node* node = scene.GetFirstChild(); node; node = node->GetNextSibling())
            known_.insert(node);
    }

    void Delete(const k3::Node* top) {
        const auto all = scene_.GetAllViewports();
        for (int i = 0; i < all->GetCount(); ++i)
            if (auto* viewport = Cast<k3::Viewport>(all->Get(i)); viewport && !known_.count(viewport))
                scene_.DeleteObject(viewport, 0);
        std::vector<k3::Node*> cameras;
        for (k3::Node* node = scene_.GetFirstChild(); node; node = node->GetNextSibling())
            if (node != top && !known_.count(node)) cameras.push_back(node);
        for (k3::Node* camera : cameras)
            scene_._RemoveChild(camera, true);
    }

private:
    k3::Scene& scene_;
    std::unordered_set<const Interface*> known_;
};

/// What is to happen with one node.
struct Verdict {
    k3::Node* node;
    std::size_t parent;
    bool isWanted;  ///< with everything below it
    bool isShown;   ///< wanted, or above something wanted
};

/// Parents first; the top's parent is the top.
std::vector<Verdict> Judge(k3::Node& top, const Filter& filter) {
    std::vector<Verdict> verdicts;
    std::unordered_map<const k3::Node*, std::size_t> places;
    for (k3::Node* node = &top; node; node = k3::NextInSubtree(node, &top)) {
        const std::size_t parent = node == &top ? 0 : places.at(node->GetParent());
        const bool isBelowWanted = node != &top && verdicts[parent].isWanted;
        const bool isWanted = isBelowWanted || filter.Wants(*node);
        places.emplace(node, verdicts.size());
        verdicts.push_back({node, parent, isWanted, isWanted});
    }
    for (std::size_t i = verdicts.size(); i-- > 1;)
        if (verdicts[i].isShown) verdicts[verdicts[i].parent].isShown = true;
    return verdicts;
}

/// Hides what is not wanted; removed from the tree it would break the hierarchy, which counts its uses.
/// False, with the top gone, if nothing is wanted.
bool ShowWanted(k3::Scene& scene, k3::Node& top, const Filter& filter) {
    const std::vector<Verdict> verdicts = Judge(top, filter);
    if (!verdicts.front().isShown) {
        scene._RemoveChild(&top, true);
        return false;
    }
    for (const Verdict& verdict : verdicts)
        if (!verdict.isShown) verdict.node->SetVisible(0);
    return true;
}

bool MergePart(k3::Scene& scene, const String& file, Context& context) {
    AddedViews views(scene);
    const Counted<k3::Node> top(scene.LoadFile(file.c_str(), &context, kLoadFlags, Guid()));
    if (!top) return false;
    const Filter filter(scene, context);
    if (k3::GenerateMissing(scene, &context) < 0 || !filter) {
        views.Delete(top.Get());
        scene._RemoveChild(top.Get(), true);
        context.Fail(LoadFailure::kDefect, file + L": its nodes cannot be made");
        return false;
    }
    views.Delete(top.Get());
    if (!ShowWanted(scene, *top, filter))
        context.ReportMessage(MessageInfo(kMessageLevel), file + L": the query wants nothing of this file");
    return true;
}

}  // namespace

bool MergeWanted(k3::Scene& scene, const String& file, Context& context) {
    if (context.GetParamVar(Param::kIdFilter).IsEmpty())
        return scene.LoadFile(file.c_str(), &context, kLoadFlags, Guid()) != nullptr;
    scene.BeginUpdate();
    const bool isMerged = MergePart(scene, file, context);
    scene.EndUpdate();
    return isMerged;
}

}  // namespace qn::exchange

#include "graph/file_viewports.h"

#include <unordered_set>

namespace qn::graph {

namespace {

/// A companion of this type stays while something depends on it.
bool MayBeDeleted(k3::Entity& companion) {
    if (companion.GetType() != k3::kTypeDependable) return true;
    const InterfaceArray* dependants = companion.GetDependants();
    for (int i = 0; dependants && i < dependants->GetCount(); ++i)
        if (dependants->Get(i)) return false;
    return true;
}

Interface* TargetOf(const k3::Viewport& viewport) {
    return viewport.GetParamVar(Param::kViewportTarget).ToInterface();
}

void SetTarget(k3::Viewport& viewport, Reference* target) {
    viewport.SetParamVar(Param::kViewportTarget, Var(target, 0));
}

}  // namespace

void FileViewports::RememberPresent() {
    present_ = scene_.GetAllViewports();
    for (int i = 0; present_ && i < present_->GetCount(); ++i) {
        const auto* viewport = Cast<k3::Viewport>(present_->Get(i));
        if (!viewport || viewport->GetName().IsEmpty()) continue;
        if (const Interface* target = TargetOf(*viewport)) names_[target].insert(viewport->GetName());
    }
}

void FileViewports::CollectNew() {
    std::unordered_set<const Interface*> known;
    for (int i = 0; present_ && i < present_->GetCount(); ++i)
        known.insert(present_->Get(i));
    new_ = InterfaceArray::CreateStrong();
    const auto all = scene_.GetAllViewports();
    for (int i = 0; all && i < all->GetCount(); ++i)
        if (Interface* viewport = all->Get(i); known.count(viewport) == 0) new_->Add(viewport);
}

k3::Viewport* FileViewports::NewAt(int index) const {
    return Cast<k3::Viewport>(new_->Get(index));
}

void FileViewports::DeleteAt(int index, int flag) {
    const Counted<k3::Viewport> viewport(NewAt(index));
    const Counted<k3::Entity> companion(viewport->GetCompanion());
    scene_.DeleteObject(viewport.Get(), flag);
    new_->RemoveAt(index);
    if (!companion || !MayBeDeleted(*companion)) return;
    const int place = new_->Find(companion.Get());
    scene_.DeleteObject(companion.Get(), flag);
    if (place >= 0) new_->RemoveAt(place);
}

void FileViewports::DeleteNew() {
    const int count = new_->GetCount();
    for (int i = 0; i < count; ++i)
        if (NewAt(i)) DeleteAt(i, 0);
}

void FileViewports::BindWanted(const k3::Node& node, Reference& target, Instance& root,
                               const NodeToInstance& nodes) {
    const bool unwanted =
        node.GetParamVar(Param::kNoViewports).IsSet() || context_.GetParamVar(Param::kIdFilter).IsSet();
    const int count = new_->GetCount();
    for (int i = 0; i < count; ++i) {
        k3::Viewport* viewport = NewAt(i);
        if (!viewport) continue;
        const bool isDouble = PointAtTarget(*viewport, target);
        if (unwanted || isDouble)
            DeleteAt(i, 1);
        else
            Await(*viewport, &target, &root, nodes, ByBsId::kYes);
    }
}

/// Lets the viewport belong to what stands in this hierarchy for what it belonged to. True if that has a
/// viewport of the name; viewports that belonged to nothing are not compared.
bool FileViewports::PointAtTarget(k3::Viewport& viewport, Reference& target) {
    Interface* owner = TargetOf(viewport);
    if (!owner) {
        SetTarget(viewport, &target);
        return false;
    }
    const auto* extension = Cast<Extension>(owner);
    const Var bsId = extension ? extension->GetParamVar(Param::kBsId) : Var();
    if (bsId.IsSet()) {
        const auto known = table_.FindReferenceByBsId(bsId.ToText());
        if (known && static_cast<Interface*>(known.Get()) != owner) {
            SetTarget(viewport, known.Get());
            owner = known.Get();
        }
    }
    return viewport.GetName().NonEmpty() && !names_[owner].insert(viewport.GetName()).second;
}

void FileViewports::BindAll(Reference* target, Instance* root, const NodeToInstance& nodes) {
    for (int i = 0; i < new_->GetCount(); ++i) {
        k3::Viewport* viewport = NewAt(i);
        if (!viewport) continue;
        SetTarget(*viewport, target);
        if (target) names_.try_emplace(target, std::set<String>{viewport->GetName()});
        Await(*viewport, target, root, nodes, ByBsId::kNo);
    }
}

void FileViewports::Await(k3::Viewport& viewport, Reference* target, const Instance* root,
                          const NodeToInstance& nodes, ByBsId byBsId) {
    AwaitNode(viewport, nodes, byBsId);
    if (k3::Layer* layer = viewport.GetLayer()) AwaitMembers(*layer, target, root, nodes);
    viewport.SetParamVar(Param::kViewportOwnBom, context_.GetParamVar(Param::kViewportBom));
}

/// The definition of what the viewport looks at.
void FileViewports::AwaitNode(k3::Viewport& viewport, const NodeToInstance& nodes, ByBsId byBsId) {
    const k3::Node* viewNode = viewport.GetViewNode();
    if (!viewNode || viewNode == &scene_) return;
    const Instance* shown = nodes.Find(viewNode);
    Counted<Reference> definition(shown ? shown->GetReference() : nullptr);
    if (!definition) return;
    const Var bsId = definition->GetParamVar(Param::kBsId);
    if (byBsId == ByBsId::kYes && bsId.IsSet())
        if (auto known = table_.FindReferenceByBsId(bsId.ToText())) definition = known;
    if (!table_.viewportTargets.Contains(&viewport))
        table_.viewportTargets.At(&viewport) = Weak<Reference>(definition.Get());
}

/// The instances of the members; the file's root stands for the whole file.
void FileViewports::AwaitMembers(k3::Layer& layer, Reference* target, const Instance* root,
                                 const NodeToInstance& nodes) {
    const PointerArray* members = layer.GetMembers();
    if (!members || members->GetCount() == 0) return;
    auto& awaited = table_.layerMembers.At(&layer);
    for (int i = 0; i < members->GetCount(); ++i) {
        Instance* shown = nodes.Find(Cast<k3::Node>(members->Get(i)));
        if (!shown) continue;
        if (shown != root)
            awaited.insert(Counted<Instance>(shown));
        else if (!table_.layerReferences.Contains(&layer))
            table_.layerReferences.At(&layer) = Counted<Reference>(target);
    }
}

}  // namespace qn::graph

#include "product/bom_impl.h"

#include "frame/host/scene_document.h"
#include "product/node_links.h"

namespace qn::k3 {
namespace {

/// Integers that a structure and the scene that shows it hand to each other; the host gives them meaning.
constexpr struct {
    int id;
    ParamWord fallback;
} kCarried[] = {{Param::kCarriedA, 4}, {Param::kCarriedB, 0}};

constexpr unsigned kCloneMode = 1;
constexpr unsigned kVisitFlags = 0x200;
constexpr int kHostCallAfterSwitch = 10;

Bom* CurrentBomOf(Scene& scene) {
    return Cast<Bom>(BomHelper(&scene).GetCurrentBom());
}

/// The scene's list of structures, made if there is none.
Counted<VarArray> BomsOf(Scene& scene) {
    if (VarArray* known = BomHelper(&scene).GetBoms()) return Counted<VarArray>(known);
    auto boms = VarArray::Create();
    scene.SetParamObject(Param::kBoms, boms.Get());
    return boms;
}

void AnnounceChange(Scene& scene) {
    scene.Notify(kBomEvent, Var(0));
}

/// The top-level nodes that belong to the structure which the scene shows: all but those that stop
/// instancing, though the cameras of model and step views count.
std::vector<Node*> TopLevelNodesOf(Scene& scene) {
    std::vector<Node*> nodes;
    for (Node* node = scene.GetFirstChild(); node; node = node->GetNextSibling())
        if (!(node->GetFlags() & NodeFlag::kStopsInstancing) || hack::IsModelViewOrStepViewCameraNode(node))
            nodes.push_back(node);
    return nodes;
}

/// Tells the host which node is worked on, unless that stops instancing.
void TellCurrentNode(Scene& scene) {
    Node* node = scene.QueryCurrentNode();
    if (!node || (node->GetFlags() & NodeFlag::kStopsInstancing)) return;
    if (auto* impl = Cast<SceneImpl>(&scene)) impl->NotifyNode(node, Var(node, 0));
}

}  // namespace

BomImpl::BomImpl(Scene* scene) : Bom(scene) {}
BomImpl::~BomImpl() = default;

ResultEnum BomImpl::Initialize(const Var& name, bool empty) {
    const Counted<Scene> scene(GetScene());
    if (!scene || rootNode_ || nodes_) return ResultEnum::kWrongState;
    const Counted<VarArray> boms = BomsOf(*scene);
    if (const ResultEnum made = MakeRoot(*scene); !Succeeded(made)) return made;
    const bool isFirst = CurrentBomOf(*scene) == nullptr;
    if (const ResultEnum filled = Fill(*scene, isFirst, empty); !Succeeded(filled)) return filled;
    if (isFirst) scene->SetParamObject(Param::kCurrentBom, this);
    SetName(name.ToText());
    boms->Add(Var(this));
    AnnounceChange(*scene);
    return ResultEnum::kSuccess;
}

/// The root is made in the scene, so that it is one of the scene's own kind, and taken out of it.
ResultEnum BomImpl::MakeRoot(Scene& scene) {
    const auto nodes = VarArray::Create();
    rootNode_ = Counted<Node>(scene.CreateChildNode(0, 0, 0));
    if (rootNode_) rootNode_->AttachTo(nullptr);
    nodes_ = nodes;
    return rootNode_ && nodes_ ? ResultEnum::kSuccess : ResultEnum::kWriteFailed;
}

ResultEnum BomImpl::Fill(Scene& scene, bool isFirst, bool empty) {
    if (isFirst) return empty ? ClearScene(scene) : Snapshot(scene, true);
    return empty ? ResultEnum::kSuccess : CloneFromScene(scene);
}

ResultEnum BomImpl::Update() {
    const Counted<Scene> scene(GetScene());
    if (!scene) return ResultEnum::kWrongState;
    if (!rootNode_ || !nodes_ || CurrentBomOf(*scene) != this) return ResultEnum::kWriteFailed;
    Snapshot(*scene, false);
    AnnounceChange(*scene);
    return ResultEnum::kSuccess;
}

ResultEnum BomImpl::Activate() {
    const Counted<Scene> scene(GetScene());
    if (!scene) return ResultEnum::kWrongState;
    const Counted<Interface> hold(BomHelper(scene.Get()).GetCurrentBom());
    auto* shown = Cast<BomImpl>(hold.Get());
    if (!rootNode_ || !nodes_ || !shown) return ResultEnum::kWriteFailed;
    if (shown == this) return ResultEnum::kSuccess;
    CarryParameters(*scene);
    scene->BeginUpdate();
    shown->Snapshot(*scene, false);
    shown->LeaveScene(*scene);
    EnterScene(*scene);
    scene->SetLayers(layers_.Get());
    TellCurrentNode(*scene);
    scene->SetParamObject(Param::kCurrentBom, this);
    AnnounceChange(*scene);
    scene->HostCall(kHostCallAfterSwitch, 0);
    scene->EndUpdate();
    return ResultEnum::kSuccess;
}

Var BomImpl::GetNodes() const {
    return Var(nodes_);
}

ResultEnum BomImpl::Snapshot(Scene& scene, bool withViewports) {
    if (!nodes_) nodes_ = VarArray::Create();  // a damaged file may have left it out
    nodes_->Clear();
    for (Node* node : TopLevelNodesOf(scene))
        nodes_->Add(Var(node));
    layers_ = Counted<InterfaceArray>(scene.GetLayers());
    if (withViewports) ClaimViewports(scene);
    CarryParameters(scene);
    return ResultEnum::kSuccess;
}

void BomImpl::ClaimViewports(Scene& scene) {
    const auto all = scene.GetAllViewports();
    for (int i = 0; i < all->GetCount(); ++i) {
        auto* viewport = Cast<Viewport>(all->Get(i));
        if (!viewport || viewport->GetKind() == ViewKind::kOther) continue;
        if (!viewport->GetParamObject(Param::kViewportOwnBom))
            viewport->SetParamObject(Param::kViewportOwnBom, this);
    }
}

ResultEnum BomImpl::ClearScene(Scene& scene) {
    for (Node* node : TopLevelNodesOf(scene))
        scene._RemoveChild(node, true);
    CarryParameters(scene);
    return ResultEnum::kSuccess;
}

// A camera that stands with the scene's nodes is not copied.
ResultEnum BomImpl::CloneFromScene(Scene& scene) {
    for (Node* node = scene.GetFirstChild(); node; node = node->GetNextSibling()) {
        if (node->GetFlags() & NodeFlag::kStopsInstancing) continue;
        const auto copy = CountedCast<Node>(node->Clone(kCloneMode));
        if (!copy) return ResultEnum::kWriteFailed;
        copy->AttachTo(rootNode_.Get());
        nodes_->Add(Var(copy));
        LinkNodes(node, copy.Get());
    }
    CarryParameters(scene);
    return ResultEnum::kSuccess;
}

void BomImpl::CarryParameters(Scene& scene) {
    for (const auto& carried : kCarried) {
        const bool isOwn = GetParamType(carried.id) != 0;
        const Extension& source = isOwn ? static_cast<const Extension&>(*this) : scene;
        Extension& target = isOwn ? static_cast<Extension&>(scene) : *this;
        target.SetParam(carried.id, source.GetParam(carried.id, carried.fallback, kValueInteger),
                        kValueInteger);
    }
}

void BomImpl::LeaveScene(Scene& scene) {
    for (const Counted<Node>& node : Nodes()) {
        node->AttachTo(rootNode_.Get());
        node->Visit(kVisitFlags, &__RemoveFromGlobalList, reinterpret_cast<ParamWord>(&scene));
    }
}

void BomImpl::EnterScene(Scene& scene) {
    const bool argument = false;
    for (const Counted<Node>& node : Nodes()) {
        node->AttachTo(&scene);
        node->Visit(kVisitFlags, &__AddToGlobalList, reinterpret_cast<ParamWord>(&argument));
    }
}

std::vector<Counted<Node>> BomImpl::Nodes() const {
    std::vector<Counted<Node>> nodes;
    for (int i = 0; i < nodes_->GetCount(); ++i)
        if (auto* node = Cast<Node>(nodes_->Get(i).ToInterface())) nodes.emplace_back(node);
    return nodes;
}

ResultEnum BomImpl::CopyFrom(const Interface* source, unsigned flags) {
    const auto* other = Cast<BomImpl>(source);
    return other ? Entity::CloneFrom(*other, flags) : ResultEnum::kWrongClass;
}

bool BomImpl::IsTypeOf(const char* name) const {
    return EqualKeys(name, kBomKey) || Entity::IsTypeOf(name);
}

const ClassRecord& BomImpl::StaticClass() {
    static const ClassRecord& record = InternClass("qn::k3::BomImpl");
    return record;
}

void* BomImpl::CastTo(const ClassRecord& wanted) {
    return CastThrough<BomImpl, Bom, graph::NodeListOwner>(this, wanted);
}

}  // namespace qn::k3

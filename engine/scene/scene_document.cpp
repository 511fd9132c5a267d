#include "frame/host/scene_document.h"

#include "engine/import/import_file.h"
#include "engine/scene/scene_access.h"
#include "engine/scene/scene_data.h"

namespace qn::k3 {
namespace {

/// Takes every occurrence of the object out of the array (may be null).
void TakeOut(InterfaceArray* array, const Interface* object) {
    if (!array) return;
    for (int place = array->Find(object); place >= 0; place = array->Find(object))
        array->RemoveAt(place);
}

}  // namespace

Scene::Scene() : data_(std::make_unique<Data>()) {
    scene_ = this;
}

// The recorder and the arrays may hold the last count of nodes, so the tree learns first that it has no
// scene.
Scene::~Scene() {
    SetSceneOfSubtree(nullptr);
    data_->undo.reset();
    data_.reset();
}

Counted<Node> Scene::MakeSame() const {
    return {};
}

Node* Scene::CreateEmptyNode(int, int, int) {
    return CreateChildNode(0, 0, 0);
}

Node* Scene::LoadFile(const wchar_t* file, Context* context, unsigned flags, const Guid& importer) {
    return ImportFile(this, String(file ? file : L""), context, flags, importer);
}

UndoRecorder* Scene::GetUndoRecorder(int) const {
    return data_->undo.get();
}

void Scene::EnableUndo(bool on) {
    if (on == (data_->undo != nullptr)) return;
    data_->undo = on ? std::make_unique<SceneUndo>(*this) : nullptr;
}

float Scene::GetCurrentTime() const {
    return data_->time;
}
void Scene::SetCurrentTime(float seconds) {
    data_->time = seconds;
}

void Scene::DeleteObject(Interface* object, int) {
    if (!object) return;
    const Counted<Interface> hold(object);
    SceneAccess::BeforeArraysChange(*this);
    TakeOut(data_->viewports.Get(), object);
    TakeOut(data_->layers.Get(), object);
    TakeOut(data_->entities.Get(), object);
    SceneAccess::NoteChange(*this);
}

void Scene::DeleteNode(int, Node* node, int) {
    Node* parent = node ? node->GetParent() : nullptr;
    if (!parent) return;
    SceneAccess::BeforeChildrenChange(this, parent, nullptr);
    parent->_RemoveChild(node, false);
}

void Scene::BeginUpdate() {
    ++data_->updateDepth;
}

void Scene::EndUpdate() {
    if (data_->updateDepth == 0 || --data_->updateDepth > 0) return;
    if (std::exchange(data_->changeHeldBack, false)) SceneAccess::NoteChange(*this);
}

unsigned Scene::GetChangeEventCount() const {
    return data_->changeEvents;
}

InterfaceArray* Scene::GetLayers() {
    if (!data_->layers) data_->layers = InterfaceArray::CreateStrong();
    return data_->layers.Get();
}

void Scene::SetLayers(InterfaceArray* layers) {
    SceneAccess::BeforeArraysChange(*this);
    data_->layers = Counted<InterfaceArray>(layers);
    for (int i = 0; layers && i < layers->GetCount(); ++i)
        if (auto* layer = Cast<Layer>(layers->Get(i))) layer->SetScene(this);
    SceneAccess::NoteChange(*this);
}

InterfaceArray* Scene::GetViewports() const {
    return data_->viewports.Get();
}

Counted<InterfaceArray> Scene::GetAllViewports() const {
    Counted<InterfaceArray> all = InterfaceArray::CreateStrong();
    const InterfaceArray* viewports = data_->viewports.Get();
    for (int i = 0; viewports && i < viewports->GetCount(); ++i)
        all->Add(viewports->Get(i));
    return all;
}

Viewport* Scene::CreateViewport(const String& name) {
    const Counted<Viewport> viewport = Make<Viewport>(this);
    if (!viewport) return nullptr;
    viewport->SetName(name);
    SceneAccess::BeforeArraysChange(*this);
    if (!data_->viewports) data_->viewports = InterfaceArray::CreateStrong();
    data_->viewports->Add(viewport.Get());
    SceneAccess::NoteChange(*this);
    return viewport.Get();
}

Layer* Scene::CreateLayer(const String& name) {
    const Counted<Layer> layer = Make<Layer>(this);
    if (!layer) return nullptr;
    layer->SetName(name);
    SceneAccess::BeforeArraysChange(*this);
    GetLayers()->Add(layer.Get());
    SceneAccess::NoteChange(*this);
    return layer.Get();
}

InterfaceArray* Scene::GetEntities() {
    if (!data_->entities) data_->entities = InterfaceArray::CreateStrong();
    return data_->entities.Get();
}

PointerArray* Scene::GetSelectedNodes() const {
    return data_->selection ? data_->selection->Array() : nullptr;
}

void Scene::SetSelectedNodes(PointerArray* nodes) {
    SceneAccess::BeforeArraysChange(*this);
    data_->selection = nodes ? std::make_unique<MemberList>(Counted<PointerArray>(nodes)) : nullptr;
    for (int i = 0; nodes && i < nodes->GetCount(); ++i)
        if (auto* node = Cast<Node>(nodes->Get(i))) SceneAccess::SetGrouped(*node);
}

Node* Scene::QueryCurrentNode() const {
    return data_->currentNode.Get();
}
void Scene::SetCurrentNode(Node* node) {
    data_->currentNode = Weak<Node>(node);
}
void Scene::HostCall(int first, int second) {
    data_->hostCalls.push_back({first, second});
}
const std::vector<Scene::HostCallRecord>& Scene::GetHostCalls() const {
    return data_->hostCalls;
}
void Scene::NotifyNode(Node* node, const Var& value) {
    data_->notices.push_back({Weak<Node>(node), value});
}
const std::vector<Scene::NodeNotice>& Scene::GetNodeNotices() const {
    return data_->notices;
}

void Scene::SetParamVar(int id, const Var& value) {
    const bool isOfStructure =
        id == Param::kCurrentBom || id == Param::kBoms || id == Param::kCarriedA || id == Param::kCarriedB;
    SceneUndo* undo = isOfStructure ? SceneAccess::RecorderOf(this) : nullptr;
    if (undo) undo->RecordParam(this, id, value);
    Node::SetParamVar(id, value);
}

void Scene::AddObserver(ReferenceTarget* observer) {
    if (observer) data_->observers.emplace_back(observer);
}

void Scene::RemoveObserver(ReferenceTarget* observer) {
    std::erase_if(data_->observers,
                  [observer](const auto& known) { return !known || known.Get() == observer; });
}

void Scene::Notify(unsigned code, const Var& value) {
    const auto observers = data_->observers;  // an observer may come or go meanwhile
    for (const auto& observer : observers)
        if (const auto target = observer.Lock()) target->OnNotify(Message{code, value, this});
}

}  // namespace qn::k3

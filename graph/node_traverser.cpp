#include "graph/node_traverser.h"

#include "frame/host/object3d.h"
#include "graph/element_changes.h"
#include "graph/node_instance.h"
#include "graph/node_properties.h"
#include "graph/reference.h"

namespace qn::graph {

namespace {

constexpr int kLocalMatrix = 0;
constexpr int kOwnMatrix = 1;

/// Where the instance's own matrices go.
void ApplyMatrices(const Instance& instance, k3::Node& node) {
    Matrix4<double> matrix;
    const auto read = [&](PropEnum id) {
        const Var value = instance.GetProperty(id, 0);
        return value.IsMatrix() && value.copy_to(matrix);
    };
    if (read(Prop::kLocalMatrix)) node.SetMatrix(&matrix, kLocalMatrix);
    if (read(Prop::kOwnMatrix)) node.SetMatrix(&matrix, kOwnMatrix);
    if (read(Prop::kThirdMatrix)) node.SetThirdMatrix(matrix);
}

/// The content that a definition stands for, or null.
Counted<k3::Object3D> ContentOf(const Reference* reference) {
    if (!reference) return nullptr;
    static_cast<void>(
        reference->HasNoTargetLink());  // asked, and not acted upon: links are content of their own here
    return Counted<k3::Object3D>(Cast<k3::Object3D>(reference->GetTarget()));
}

}  // namespace

NodeTraverser::NodeTraverser(LookupTable* table, k3::Node* node, NodeToInstance* nodeToInstance,
                             InstanceToNodes* instanceToNodes, bool createNodes)
    : table_(table),
      nodeToInstance_(nodeToInstance),
      instanceToNodes_(instanceToNodes),
      createNodes_(createNodes),
      node_(node) {}

NodeTraverser::~NodeTraverser() = default;

Counted<NodeTraverser> NodeTraverser::At(k3::Node* node) const {
    return Make<NodeTraverser>(table_.Get(), node, nodeToInstance_, instanceToNodes_, createNodes_);
}

void NodeTraverser::Enter(k3::Node* node, Instance* instance) {
    nodeToInstance_->Set(node, instance);
    instanceToNodes_->Add(instance, node);
}

Counted<Instance> NodeTraverser::KnownOrNewInstance() {
    if (Instance* known = nodeToInstance_->Find(node_.Get())) return Counted<Instance>(known);
    auto instance = InstanceForNode(*node_, table_.Get(), *this);
    if (instance) Enter(node_.Get(), instance.Get());
    return instance;
}

Counted<Instance> NodeTraverser::GetInstance() {
    if (!node_) return nullptr;
    auto instance = KnownOrNewInstance();
    if (childrenAdded_ || !instance) return instance;
    const Counted<Reference> reference(instance->GetReference());
    if (reference) AddChildrenTo(*reference);
    childrenAdded_ = true;
    return instance;
}

void NodeTraverser::AddChildrenTo(Reference& reference) {
    for (k3::Node* child = node_->GetFirstChild(); child; child = child->GetNextSibling()) {
        const auto traverser = At(child);
        const auto instance = traverser ? traverser->KnownOrNewInstance() : Counted<Instance>();
        if (instance) reference.AddChild(instance.Get());
    }
}

Counted<Selector::Traverser> NodeTraverser::CreateChild(Instance* instance) {
    if (!createNodes_) return Counted<Selector::Traverser>(this);
    if (!instance) return nullptr;
    const bool bindsNode = useNodeItself_;
    useNodeItself_ = false;
    k3::Node* child = bindsNode ? node_.Get() : node_->CreateChildNode(0, 0, 0);
    if (!child) return nullptr;
    child->SetParamVar(Param::kInstance, Var(instance, 1));
    const auto content = ContentOf(instance->GetReference());
    Enter(child, instance);
    ApplyMatrices(*instance, *child);
    if (content) child->SetObject(content.Get());
    return Make<NodeTraverser>(instance->GetLookupTable(), child, nodeToInstance_, instanceToNodes_,
                               createNodes_);
}

Counted<Selector::Traverser> NodeTraverser::GetParent() {
    return At(node_ ? node_->GetParent() : nullptr);
}

int NodeTraverser::GetChildCount() const {
    return node_ ? node_->GetChildCount() : 0;
}

Counted<Selector::Traverser> NodeTraverser::GetChild(int index) {
    k3::Node* child = node_ ? node_->GetChildAt(index) : nullptr;
    return child ? At(child) : Counted<NodeTraverser>();
}

void NodeTraverser::ApplyElementChanges(k3::Node* node, const String& path,
                                        std::map<PersistentSelector*, k3::Node*>& answers,
                                        std::map<PersistentSelector*, k3::Node*>&) {
    if (node) ApplyElementsToNodes(*node, path, table_.Get(), *instanceToNodes_, answers);
}

void NodeTraverser::StoreElementChanges(k3::Node* node) {
    if (node) StoreNodeLinks(*node, *nodeToInstance_);
}

Var NodeTraverser::GetProperty(PropEnum id, int) const {
    return node_ ? ReadNodeProperty(*node_, id) : Var();
}

void NodeTraverser::SetProperty(PropEnum id, const Var& value) {
    if (node_) WriteNodeProperty(*node_, id, value);
}

}  // namespace qn::graph

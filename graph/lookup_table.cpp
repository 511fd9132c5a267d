#include "frame/host/api.h"
#include "graph/lookup_table_impl.h"
#include "graph/node_instancing.h"

namespace qn::graph {

namespace {

constexpr const wchar_t* kIdDelimiter = L"_";

}  // namespace

LookupTableImpl::LookupTableImpl() {
    nameGenerator.SetCurrentDelimiter(kIdDelimiter);
}

LookupTableImpl::~LookupTableImpl() = default;

void LookupTableImpl::SetSceneAndContext(k3::Scene* newScene, Context* newContext) {
    scene = newScene;
    context = newContext;
}

void LookupTableImpl::Rebuild() {
    instances.clear();
    references.clear();
    instancesById.clear();
    referencesById.clear();
    selectorOwners.clear();
    instancesByBsId.clear();
    referencesByBsId.clear();
    nameGenerator.Reset();
    nodeToInstance.Clear();
    instanceToNodes.Clear();
    layerMembers.Clear();
    viewportTargets.Clear();

    const Counted<k3::Scene> root = scene.Lock();
    if (!root || !context) return;
    const auto factory = api ? api->Create(ClassKey::kHierarchyFactory) : Counted<Interface>();
    auto* instancing = Cast<NodeInstancing>(factory.Get());
    if (!instancing) return;
    for (Counted<k3::Node> node(root->GetFirstChild()); node;
         node = Counted<k3::Node>(node->GetNextSibling()))
        instancing->CreateReferenceFromNodeWithMaps(node.Get(), this, String(), nodeToInstance,
                                                    instanceToNodes);
}

bool LookupTableImpl::IsSelectorPathValid(const Selector& selector) {
    const int count = selector.GetPathElementCount();
    if (count == 0) return false;
    const auto isRegistered = [this](Instance* element) {
        return element && instances.count(Counted<Instance>(element)) != 0;
    };
    // The definition that the elements found so far lead to.
    const Instance* last = selector.GetPathElement(0);
    if (!isRegistered(selector.GetPathElement(0))) return false;
    for (int i = 1; i < count; ++i) {
        Instance* element = selector.GetPathElement(static_cast<unsigned>(i));
        const Reference* reference = last->GetReference();
        if (!isRegistered(element) || !reference) continue;
        if (!reference->HasChild(element)) return false;
        last = element;
    }
    return true;
}

ResultEnum LookupTableImpl::CopyFrom(const Interface* source, unsigned flags) {
    if (!Cast<Instance>(source)) return ResultEnum::kWrongClass;
    return ReferenceSource::CopyFrom(source, flags);
}

bool LookupTableImpl::IsTypeOf(const char* name) const {
    return EqualKeys(name, ClassKey::kLookupTable) || ReferenceSource::IsTypeOf(name);
}

}  // namespace qn::graph

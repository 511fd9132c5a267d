#include "tests/product/product_support.h"

#include "construction/hierarchy_factory_impl.h"
#include "construction/hierarchy_generator_impl.h"
#include "engine/stream/scene_file.h"
#include "graph/instance_impl.h"
#include "graph/lookup_table_impl.h"
#include "graph/persistent_selector_impl.h"
#include "graph/reference_impl.h"
#include "product/effectivity_impl.h"
#include "tests/support/static_module.h"

namespace qn::test {
namespace {

using namespace qn::graph;

const StaticModule g_module({
    {k3::kBomKey, &MakeOf<k3::BomImpl>},
    {k3::kEffectivityKey, &MakeOf<k3::effectivity_impl::EffectivityImpl>},
    {ClassKey::kInstance, &MakeOf<InstanceImpl>},
    {ClassKey::kReference, &MakeOf<ReferenceImpl>},
    {ClassKey::kPersistentSelector, &MakeOf<PersistentSelectorImpl>},
    {ClassKey::kLookupTable, &MakeOf<LookupTableImpl>},
    {ClassKey::kHierarchyFactory, &MakeOf<HierarchyFactoryImpl>},
    {ClassKey::kHierarchyGenerator, &MakeOf<HierarchyGeneratorImpl>},
});

}  // namespace

k3::Node* AddNode(k3::Node& parent, const char* name) {
    k3::Node* child = parent.CreateChildNode(0, 0, 0);
    child->SetName(String::FromUtf8(name).c_str());
    return child;
}

std::string TreeOf(const k3::Node& node) {
    const std::string below = ShownBy(node);
    return node.GetName().ToUtf8() + (below.empty() ? "" : "(" + below + ")");
}

std::string ShownBy(const k3::Node& parent) {
    std::string text;
    for (const k3::Node* child = parent.GetFirstChild(); child; child = child->GetNextSibling())
        text += (text.empty() ? "" : " ") + TreeOf(*child);
    return text;
}

std::string NodesOf(const k3::Bom& bom) {
    const Var nodes = bom.GetNodes();
    std::string text;
    for (int i = 0; i < nodes.size(); ++i) {
        const auto* node = Cast<k3::Node>(nodes.ValueAt(i).ToInterface());
        text += (text.empty() ? "" : " ") + (node ? TreeOf(*node) : "?");
    }
    return text;
}

std::string BytesOf(k3::Scene& scene) {
    const auto context = MakeContext();
    return SaveSceneToBytes(scene, *context);
}

Counted<k3::Scene> Reloaded(k3::Scene& scene) {
    const auto context = MakeContext();
    const std::string bytes = BytesOf(scene);
    auto read = Make<k3::Scene>();
    EXPECT_TRUE(LoadSceneFromBytes(bytes, L"test", *read, *context));
    EXPECT_TRUE(context->Texts().empty());
    EXPECT_TRUE(BytesOf(*read) == bytes) << "saved again the bytes differ";
    return read;
}

k3::Bom* BomAt(k3::Scene& scene, int index) {
    const VarArray* boms = k3::BomHelper(&scene).GetBoms();
    return boms ? Cast<k3::Bom>(boms->Get(index).ToInterface()) : nullptr;
}

Counted<k3::BomImpl> AddBom(k3::Scene& scene, const wchar_t* name, bool empty) {
    auto bom = Make<k3::BomImpl>(&scene);
    EXPECT_EQ(bom->Initialize(Var(name), empty), ResultEnum::kSuccess);
    return bom;
}

k3::Viewport* AddCamera(k3::Scene& scene, const char* name, k3::ViewKind kind) {
    k3::Node* node = AddNode(scene, name);
    node->SetFlags(NodeFlag::kStopsInstancing);
    k3::Viewport* viewport = scene.CreateViewport(String::FromUtf8(name));
    viewport->SetKind(kind);
    viewport->SetViewNode(node);
    return viewport;
}

int SceneObserver::BomEvents() const {
    int count = 0;
    for (const Message& message : messages)
        count += message.code == k3::kBomEvent && message.value == Var(0);
    return count;
}

}  // namespace qn::test

#include "tests/operations/operations_support.h"

#include "construction/hierarchy_factory_impl.h"
#include "frame/host/change_management.h"
#include "frame/host/exchange.h"
#include "graph/instance_impl.h"
#include "graph/lookup_table_impl.h"
#include "graph/module_handle.h"
#include "graph/reference_impl.h"
#include "operations/description.h"
#include "product/bom_impl.h"
#include "services/hierarchy_checker.h"
#include "tests/support/static_module.h"
#include "utility/scene_utilities.h"

namespace qn::test {
namespace {

bool Note(const std::string& call) {
    ThePartners().calls.push_back(call);
    return ThePartners().answer;
}

std::string NameOf(const k3::Scene* scene) {
    return scene && scene == ThePartners().scene ? "scene" : "?";
}

/// What a call ends with.
std::string With(const Context* context) {
    if (!context) return " without context";
    return context == ThePartners().context ? " with context" : " with another context";
}

bool NoteCheck(const char* call, const k3::Scene* scene, const Context* log) {
    return Note(call + (" " + NameOf(scene)) + With(log));
}

class FakeChecker final : public graph::HierarchyChecker {
public:
    bool ValidateHierarchy(k3::Scene* scene, Context* log) override {
        return NoteCheck("ValidateHierarchy", scene, log);
    }
    bool ValidateLayers(k3::Scene* scene, Context* log) override {
        return NoteCheck("ValidateLayers", scene, log);
    }
    bool RepairHierarchy(k3::Scene* scene, Context* log) override {
        return NoteCheck("RepairHierarchy", scene, log);
    }
    void RepairLayers(k3::Scene* scene, Context* log) override { NoteCheck("RepairLayers", scene, log); }
    bool RepairTopLevelNodes(k3::Scene* scene, Context* log) override {
        return NoteCheck("RepairTopLevelNodes", scene, log);
    }
    bool RepairLayersAndViewports(k3::Scene* scene, Context* log) override {
        return NoteCheck("RepairLayersAndViewports", scene, log);
    }
};

class FakeUtilities final : public utility::SceneUtilities {
public:
    bool ContainsCollaborationObjects(k3::Node* node) override {
        return Note("ContainsCollaborationObjects " + NameOf(Cast<k3::Scene>(node)));
    }
};

class FakeMetadataExport final : public qfxml::BrineServerMetadataExport {
public:
    bool Export(k3::Scene* scene, const String& file, const String& folder, bool topLevelOnly,
                Context* context) override {
        return Note("Export " + NameOf(scene) + "|" + file.ToUtf8() + "|" + folder.ToUtf8() +
                    (topLevelOnly ? "|top" : "|all") + With(context));
    }
};

class FakeShallowExporter final : public qfxml::ShallowExporter {
public:
    bool Export(const String& a, const String& b, const String& c, Interface* object, Interface* second,
                const String& f, const String& g, const String& h, const String& i,
                Context* context) override {
        std::string call = "Export";
        for (const String& text : {a, b, c, f, g, h, i})
            call += "|" + text.ToUtf8();
        return Note(call + (object ? "|object" : "|null") + (second ? "|object" : "|null") + With(context));
    }
};

class FakeResolver final : public qfxml::VisualContextResolver {
public:
    bool Extract(const String& source, const String& index, const String& output, Context* context) override {
        return Note("Extract " + source.ToUtf8() + "|" + index.ToUtf8() + "|" + output.ToUtf8() +
                    With(context));
    }
    bool Merge(const Var& files, k3::Scene* scene, Context* context) override {
        return Note("Merge " + std::to_string(files.size()) + " " + Utf8(files.ValueAt(0)) + " into " +
                    NameOf(scene) + " under " +
                    (context ? Utf8(context->GetParamVar(Param::kIdFilter)) : "nothing"));
    }
    Var ReadFilter(const String& query, Context* context) override {
        Note("ReadFilter " + query.ToUtf8() + With(context));
        return Var(String(L"filter of ") + query);
    }
};

template <class T>
Interface* MakePartner() {
    ++ThePartners().made;
    if (ThePartners().canBeMade) return Make<T>().Detach();
    return Make<VarMap>().Detach();
}

Interface* MakeFactory() {
    if (const auto factory = ThePartners().factory) return Counted<Interface>(factory).Detach();
    return MakePartner<graph::HierarchyFactoryImpl>();
}

const StaticModule g_module({
    {graph::ClassKey::kInstance, &MakeOf<graph::InstanceImpl>},
    {graph::ClassKey::kReference, &MakeOf<graph::ReferenceImpl>},
    {graph::ClassKey::kLookupTable, &MakeOf<graph::LookupTableImpl>},
    {graph::ClassKey::kHierarchyFactory, &MakeFactory},
    {graph::ClassKey::kHierarchyChecker, &MakePartner<FakeChecker>},
    {utility::kSceneUtilitiesKey, &MakePartner<FakeUtilities>},
    {qfxml::ExchangeKey::kMetadataExport, &MakePartner<FakeMetadataExport>},
    {qfxml::ExchangeKey::kShallowExporter, &MakePartner<FakeShallowExporter>},
    {qfxml::ExchangeKey::kVisualContextResolver, &MakePartner<FakeResolver>},
});

}  // namespace

Partners& ThePartners() {
    static Partners partners;
    return partners;
}

OperationTest::OperationTest() {
    ThePartners() = {};
    ThePartners().scene = scene.Get();
    ThePartners().context = context.Get();
    graph::SetModuleHandle(&ThePartners());
    graph::RegisterOperationDescription(&ThePartners());
}

OperationTest::~OperationTest() {
    graph::SetModuleHandle(nullptr);
    ThePartners() = {};
}

k3::Node* OperationTest::AddNode(const char* name, k3::Node* parent) {
    k3::Node* const node = parent ? parent->CreateChildNode(0, 0, 0) : scene->CreateEmptyNode(0, 0, 0);
    node->SetName(String::FromUtf8(name).c_str());
    return node;
}

k3::Node* OperationTest::AddUse(const char* name, graph::Reference* reference, k3::Node* parent) {
    k3::Node* const node = AddNode(name, parent);
    const Counted<graph::Reference> definition =
        reference ? Counted<graph::Reference>(reference) : MakeReference();
    node->SetParamVar(Param::kInstance, Var(definition->CreateInstance()));
    return node;
}

k3::Node* OperationTest::AddBareUse(const char* name) {
    k3::Node* const node = AddNode(name);
    node->SetParamVar(Param::kInstance, Var(Make<graph::InstanceImpl>()));
    return node;
}

graph::Instance* OperationTest::InstanceOf(const k3::Node* node) {
    return Cast<graph::Instance>(node->GetParamVar(Param::kInstance));
}

graph::Reference* OperationTest::ReferenceOf(const k3::Node* node) {
    const graph::Instance* const instance = InstanceOf(node);
    return instance ? instance->GetReference() : nullptr;
}

int OperationTest::Run(int method, const Arguments& arguments, Context* with) {
    Arguments all = arguments;
    all.emplace_back(0, Var(scene));
    return RunWithoutScene(method, all, with);
}

int OperationTest::RunWithoutScene(int method, const Arguments& arguments, Context* with) {
    const Counted<Params> params = Params::Create();
    for (const auto& [id, value] : arguments)
        params->SetParamVar(id, value);
    return operation->Invoke(method, params.Get(), with);
}

Counted<graph::Reference> MakeReference(const char* bsId) {
    Counted<graph::Reference> reference = Make<graph::ReferenceImpl>();
    if (bsId) reference->SetProperty(kBsId, Var(bsId));
    return reference;
}

Var MapOf(const char* key, const Var& value) {
    Var map;
    map.At(key) = value;
    return map;
}

Counted<VarMap> MetadataOf(const std::vector<std::string>& keys) {
    Counted<VarMap> map = VarMap::Create();
    for (const std::string& key : keys)
        map->At(Var(key.c_str())) = Var(true);
    return map;
}

std::string KeysOf(const Extension& object) {
    const VarMap* const metadata = object.GetMetadata(false);
    if (!metadata) return "(none)";
    std::string keys;
    for (int i = 0; i < metadata->GetCount(); ++i)
        keys += (i ? " " : "") + Utf8(metadata->KeyAt(i));
    return keys;
}

ShutGate::ShutGate() {
    ChangeManagementSupportBase::SetAvailabilityCheck([](Context*) { return false; });
}

ShutGate::~ShutGate() {
    ChangeManagementSupportBase::SetAvailabilityCheck(nullptr);
}

}  // namespace qn::test

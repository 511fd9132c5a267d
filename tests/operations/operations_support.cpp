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

std::string WithLog(const char* call, const Context* log) {
    return std::string(call) + (log ? " with log" : " without log");
}

class FakeChecker final : public graph::HierarchyChecker {
public:
    bool ValidateHierarchy(k3::Scene*, Context* log) override {
        return Note(WithLog("ValidateHierarchy", log));
    }
    bool ValidateLayers(k3::Scene*, Context* log) override { return Note(WithLog("ValidateLayers", log)); }
    bool RepairHierarchy(k3::Scene*, Context* log) override { return Note(WithLog("RepairHierarchy", log)); }
    void RepairLayers(k3::Scene*, Context* log) override { Note(WithLog("RepairLayers", log)); }
    bool RepairTopLevelNodes(k3::Scene*, Context* log) override {
        return Note(WithLog("RepairTopLevelNodes", log));
    }
    bool RepairLayersAndViewports(k3::Scene*, Context* log) override {
        return Note(WithLog("RepairLayersAndViewports", log));
    }
};

class FakeUtilities final : public utility::SceneUtilities {
public:
    bool ContainsCollaborationObjects(k3::Node* node) override {
        return Note(std::string("ContainsCollaborationObjects ") + (Cast<k3::Scene>(node) ? "scene" : "?"));
    }
};

class FakeMetadataExport final : public qfxml::BrineServerMetadataExport {
public:
    bool Export(k3::Scene* scene, const String& file, const String& folder, bool topLevelOnly,
                Context*) override {
        return Note(std::string("Export ") + (scene ? "scene" : "?") + "|" + file.ToUtf8() + "|" +
                    folder.ToUtf8() + (topLevelOnly ? "|top" : "|all"));
    }
};

class FakeShallowExporter final : public qfxml::ShallowExporter {
public:
    bool Export(const String& a, const String& b, const String& c, Interface* object, Interface* second,
                const String& f, const String& g, const String& h, const String& i, Context*) override {
        std::string call = "Export";
        for (const String& text : {a, b, c, f, g, h, i})
            call += "|" + text.ToUtf8();
        return Note(call + (object ? "|object" : "|null") + (second ? "|object" : "|null"));
    }
};

class FakeResolver final : public qfxml::VisualContextResolver {
public:
    bool Extract(const String& source, const String& index, const String& output, Context*) override {
        return Note("Extract " + source.ToUtf8() + "|" + index.ToUtf8() + "|" + output.ToUtf8());
    }
    bool Merge(const Var& files, k3::Scene* scene, Context* context) override {
        return Note("Merge " + std::to_string(files.size()) + " " + Utf8(files.ValueAt(0)) +
                    (scene ? " into scene" : "") + " under " +
                    (context ? Utf8(context->GetParamVar(Param::kIdFilter)) : "nothing"));
    }
    Var ReadFilter(const String& query, Context*) override {
        Note("ReadFilter " + query.ToUtf8());
        return Var(String(L"filter of ") + query);
    }
};

template <class T>
Interface* MakePartner() {
    if (ThePartners().canBeMade) return Make<T>().Detach();
    return Make<VarMap>().Detach();
}

const StaticModule g_module({
    {graph::ClassKey::kInstance, &MakeOf<graph::InstanceImpl>},
    {graph::ClassKey::kReference, &MakeOf<graph::ReferenceImpl>},
    {graph::ClassKey::kLookupTable, &MakeOf<graph::LookupTableImpl>},
    {graph::ClassKey::kHierarchyFactory, &MakePartner<graph::HierarchyFactoryImpl>},
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
    graph::SetModuleHandle(&ThePartners());
    graph::RegisterOperationDescription(&ThePartners());
}

OperationTest::~OperationTest() {
    graph::SetModuleHandle(nullptr);
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

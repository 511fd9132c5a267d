#include "graph/file_load.h"

#include "frame/host/api.h"
#include "frame/host/translate.h"
#include "graph/node_content.h"
#include "graph/node_instancing.h"
#include "graph/path_trimming.h"
#include "graph/reference_impl.h"

#include <algorithm>
#include <vector>

namespace qn::graph {

namespace {

constexpr unsigned kLoadFlags = 0x800002a;
constexpr int kFileMessageLevel = 3;
constexpr const char* kNotLoaded = "File (%1) could not be loaded into the scene.";
constexpr const char* kNotOpened = "Unable to load (%1) - file does not exist or cannot be opened.";

/// The files whose loads are under way, the outermost first: a file is not loaded within itself.
thread_local std::vector<String> filesUnderWay;

class UnderWay {
public:
    explicit UnderWay(const String& file) { filesUnderWay.push_back(file); }
    ~UnderWay() { filesUnderWay.pop_back(); }
    UnderWay(const UnderWay&) = delete;
    UnderWay& operator=(const UnderWay&) = delete;

    static bool Has(const String& file) {
        return std::find(filesUnderWay.begin(), filesUnderWay.end(), file) != filesUnderWay.end();
    }
};

/// Takes each use of the new reference off the paths below it. The last use, or null.
Counted<Instance> TrimPathsBelowUses(const Reference& target) {
    Counted<Instance> last;
    for (int i = 0; i < target.GetInstanceCount(); ++i) {
        const auto instance = target.GetInstance(i);
        if (!instance) continue;
        std::set<Reference*> visited;
        TrimSelectorPaths(instance.Get(), instance->GetReference(), visited);
        last = instance;
    }
    return last;
}

}  // namespace

Counted<Reference> ReferenceFromNode(k3::Node& node, LookupTable& table, const String& id,
                                     NodeToInstance& nodes, InstanceToNodes& instances) {
    const auto factory = api ? api->Create(ClassKey::kHierarchyFactory) : nullptr;
    auto* instancing = Cast<NodeInstancing>(factory.Get());
    if (!instancing) return nullptr;
    return instancing->CreateReferenceFromNodeWithMaps(&node, &table, id, nodes, instances);
}

FileLoad::FileLoad(LookupTableImpl& table, k3::Scene& scene, Context& context, FileRequest request)
    : table_(table),
      scene_(scene),
      context_(context),
      request_(std::move(request)),
      viewports_(table, scene, context) {}

Counted<Reference> FileLoad::Run() {
    UseOptions();
    viewports_.RememberPresent();
    node_ = Counted<k3::Node>(LoadNode());
    if (context_.GetOption(0, "prevent_reinstancing", 0) != 0)
        return table_.GetOrCreateReference(request_.id);
    if (node_ && (node_->GetFlags() & NodeFlag::kStopsInstancing)) {
        RestoreOptions();
        return table_.GetOrCreateReference(request_.id);
    }
    viewports_.CollectNew();
    RestoreOptions();
    if (!node_) {
        Report(kNotOpened);
        return nullptr;
    }
    fileMetadata_ = Var(node_->GetMetadata(false), 1);
    const Counted<Instance> root(CarriedInstance(*node_));
    const Counted<Reference> loaded(root ? root->GetReference() : nullptr);
    Counted<Reference> result;
    if (!root)
        result = BindNodes();
    else if (loaded)
        result = BindHierarchy(*root, *loaded);
    node_->Remove(0);
    return result;
}

/// The file's node; an empty one if the file cannot be loaded.
k3::Node* FileLoad::LoadNode() {
    k3::Node* node = nullptr;
    if (!UnderWay::Has(request_.file)) {
        const UnderWay mark(request_.file);
        node = scene_.LoadFile(request_.file.c_str(), &context_, kLoadFlags, request_.importer);
    }
    if (node) return node;
    Report(kNotLoaded);
    return scene_.CreateEmptyNode(0, 0, 0);
}

void FileLoad::UseOptions() {
    if (!request_.options.IsMap()) return;
    savedOptions_ = context_.GetParamVar(Param::kLoadOptions);
    context_.SetParamVar(Param::kLoadOptions, request_.options);
}

void FileLoad::RestoreOptions() {
    if (savedOptions_.IsMap())
        context_.SetParamVar(Param::kLoadOptions, savedOptions_);
    else if (request_.options.IsMap())
        context_.SetParamVar(Param::kLoadOptions, Var());
}

void FileLoad::Report(const char* text) {
    const String message = Translate("assembly", text, "XMSG: Error message", -1);
    context_.ReportMessage(MessageInfo(kFileMessageLevel), message.Arg(request_.file));
}

/// A file that brought nodes alone: the factory makes the hierarchy.
Counted<Reference> FileLoad::BindNodes() {
    auto target = ReferenceFromNode(*node_, table_, request_.id, fileNodes_, fileInstances_);
    Counted<Instance> root;
    if (target) {
        table_.loadedReferences.insert(target);
        root = TrimPathsBelowUses(*target);
        if (auto* impl = Cast<ReferenceImpl>(target.Get())) impl->ClearInstances();
    }
    viewports_.BindAll(target.Get(), root.Get(), fileNodes_);
    return target;
}

}  // namespace qn::graph

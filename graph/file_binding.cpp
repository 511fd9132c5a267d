#include "frame/host/api.h"
#include "graph/file_load.h"
#include "graph/instance_impl.h"
#include "graph/lookup_table_impl.h"
#include "graph/module_handle.h"
#include "graph/node_content.h"
#include "graph/reference_impl.h"

// References that stand for files: which file, and whether it has to be read at all.

namespace qn::graph {

namespace {

constexpr unsigned kReadFile = 0x101;

/// The uses of a placeholder, kept while something else takes its place.
class Uses {
public:
    explicit Uses(const Reference& placeholder) {
        for (int i = 0; i < placeholder.GetInstanceCount(); ++i)
            if (auto instance = placeholder.GetInstance(i)) instances_.push_back(std::move(instance));
    }
    Uses() = default;

    /// They become the only ones listed there, and use it.
    void MoveTo(Reference& reference) const {
        std::vector<Instance*> listed;
        for (const auto& instance : instances_)
            listed.push_back(instance.Get());
        reference.ClearInstances();
        reference.AddInstances(listed);
        for (Instance* instance : listed)
            if (auto* impl = Cast<InstanceImpl>(instance)) impl->SetReference(&reference);
    }

private:
    std::vector<Counted<Instance>> instances_;
};

/// The server id goes to the node and to the instance that it brought.
void SetBsId(k3::Node& node, const String& bsId) {
    if (Instance* const instance = CarriedInstance(node)) instance->SetProperty(Prop::kBsId, Var(bsId));
    node.SetParamVar(Param::kBsId, Var(bsId));
}

}  // namespace

Counted<Reference> LookupTableImpl::LoadExternalReference(Reference* reference, const Var&,
                                                          const String& id) {
    if (!reference) return nullptr;
    const Counted<Reference> kept(reference);
    const Var target = reference->GetTarget();
    if (!target.IsText()) return nullptr;
    Counted<Reference> result;
    if (const String file = target.ToText(); file.NonEmpty()) {
        Guid importer;
        reference->GetProperty(Prop::kImporter, 0).copy_to(importer);
        result = LoadFileIntoScene(file, id, reference->GetProperty(Prop::kLoadOptions, 0), importer);
    }
    if (!result)
        reference->SetTarget(Var());
    else if (result->GetTarget().IsText())
        result->SetTarget(Var());
    return result;
}

Counted<Reference> LookupTableImpl::LoadFileIntoScene(const String& file, const String& id,
                                                      const Var& options, const Guid& importer) {
    const auto placeholder = std::move(loadPlaceholder);
    const auto liveScene = scene.Lock();
    const auto liveContext = context.Lock();
    if (file.IsEmpty() || !liveScene || !liveContext) return nullptr;
    const Counted<LookupTableImpl> kept(this);
    return FileLoad(*this, *liveScene, *liveContext, {file, id, options, importer, placeholder.Get()}).Run();
}

Counted<Reference> LookupTableImpl::GetOrLoadFile(const String& file, const String& id, const String& bsId,
                                                  const Var& options, const Guid& importer) {
    Counted<Reference> known;
    if (bsId.NonEmpty()) known = GetOrCreateBsReference(id, bsId);
    if (known && !known->IsLeaf()) return known;
    loadPlaceholder = known;
    auto loaded = LoadFileIntoScene(file, id, options, importer);
    loadPlaceholder.Reset();
    return loaded;
}

Counted<Reference> LookupTableImpl::MergeFile(const String& file, const String& id, const String& bsId) {
    const auto stream = api ? api->CreateStream(GetModuleHandle(), file.c_str(), kReadFile) : nullptr;
    return MergeStream(stream.Get(), id, bsId);
}

Counted<Reference> LookupTableImpl::MergeStream(Stream* stream, const String& id, const String& bsId) {
    Counted<Reference> placeholder;
    Uses uses;
    if (bsId.NonEmpty() && (placeholder = GetOrCreateBsReference(id, bsId))) {
        uses = Uses(*placeholder);
        if (!placeholder->IsLeaf()) return placeholder;
    }
    const auto liveScene = scene.Lock();
    const auto liveContext = context.Lock();
    k3::Node* merged = stream && liveScene ? FastMerge(liveScene.Get(), liveContext.Get(), stream) : nullptr;
    if (!merged) return placeholder;
    const Counted<k3::Node> node(merged);
    if (bsId.NonEmpty()) SetBsId(*node, bsId);
    NodeToInstance nodes;
    InstanceToNodes instanceNodes;
    auto result = ReferenceFromNode(*node, *this, id, nodes, instanceNodes);
    if (Cast<ReferenceImpl>(result.Get())) uses.MoveTo(*result);
    node->Remove(0);
    return result;
}

}  // namespace qn::graph

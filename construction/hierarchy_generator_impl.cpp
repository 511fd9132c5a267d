#include "construction/hierarchy_generator_impl.h"

#include "construction/hierarchy_factory_impl.h"
#include "frame/host/api.h"
#include "frame/host/parameter_ids.h"
#include "frame/host/scene_document.h"
#include "frame/host/stream.h"
#include "graph/instance.h"
#include "graph/limits.h"
#include "graph/reference_impl.h"
#include "graph/reference_registration.h"

namespace qn::graph {

namespace {

constexpr const char* kNodeKey = "k3_node";

void RemoveChildren(k3::Node& node) {
    while (k3::Node* const child = node.GetFirstChild())
        node._RemoveChild(child, true);
}

}  // namespace

ResultEnum HierarchyGeneratorImpl::Generate(Extension* target, Context* context) {
    if (!target || !target->IsTypeOf(kNodeKey)) return ResultEnum::kWrongClass;
    if (!dirty_) return ResultEnum::kSuccess;
    auto* const node = Cast<k3::Node>(target);
    if (!node) return ResultEnum::kNothing;
    RemoveChildren(*node);
    targetNode_ = node;
    if (!context_) context_ = context ? Counted<Context>(context) : api->CreateContext(0, 0);
    GenerateInto(*node);
    dirty_ = false;
    return ResultEnum::kSuccess;
}

void HierarchyGeneratorImpl::GenerateInto(k3::Node& node) {
    if (table_) table_->SetSceneAndContext(node.GetScene(), context_.Get());
    Make<HierarchyFactoryImpl>()->GenerateNodes(selector_, &node);
    node.SetParamVar(Param::kInstance, Var(selector_.GetInstance(), 1));
    if (table_) table_->ApplyPendingBindings();
}

Interface* HierarchyGeneratorImpl::GetGeneratedRoot() const {
    return saveEnabled_ ? GetRootReference() : nullptr;
}

void HierarchyGeneratorImpl::SetSelector(const Selector& selector) {
    const Reference* const root = selector.GetReference();
    if (!root) return;
    table_ = Counted<LookupTable>(root->GetLookupTable());
    context_ = Counted<Context>(table_ ? table_->GetContext() : nullptr);
    selector_ = selector;
    dirty_ = true;
}

void HierarchyGeneratorImpl::ResolveReferenceSelectors() {
    Reference* const root = GetRootReference();
    if (!root) return;
    Var cache = root->CreateResolverCache();
    root->ResolveSelectors(true, &cache);
}

void HierarchyGeneratorImpl::StoreReferenceSelectors() {
    Reference* const root = GetRootReference();
    if (!root) return;
    Var visited;
    visited.InitMap();
    root->StoreSelectors(true, &visited);
}

void HierarchyGeneratorImpl::RunReferenceInstructions() {
    if (Reference* const root = GetRootReference())
        root->RunAllInstructions(targetNode_.Get(), context_.Get());
}

ResultEnum HierarchyGeneratorImpl::Save(Stream* stream, Context* context) {
    return saveEnabled_ ? HierarchyGenerator::Save(stream, context) : ResultEnum::kSuccess;
}

ResultEnum HierarchyGeneratorImpl::HandleChunk(int id, Stream* stream, Context* context) {
    if (id != kRootChunk) return HierarchyGenerator::HandleChunk(id, stream, context);
    const Counted<Interface> object = stream->ReadObject(context);
    if (auto* const root = Cast<ReferenceImpl>(object.Get())) AdoptRoot(*root, context);
    return ResultEnum::kSuccess;
}

void HierarchyGeneratorImpl::AdoptRoot(ReferenceImpl& root, const Context* context) {
    selector_ = Selector();
    table_ = Make<HierarchyFactoryImpl>()->CreateLookupTable();
    if (table_) graph::RegisterInTable(root, table_.Get(), kMaxOccurrences, context);
    selector_.AppendPathElement(root.CreateInstanceWithId(String()).Get());
    dirty_ = true;
}

ResultEnum HierarchyGeneratorImpl::CopyFrom(const Interface* source, unsigned flags) {
    const auto* const generator = Cast<HierarchyGenerator>(source);
    return generator ? CloneFrom(*generator, flags) : ResultEnum::kWrongClass;
}

bool HierarchyGeneratorImpl::IsTypeOf(const char* name) const {
    return EqualKeys(name, ClassKey::kHierarchyGenerator) || HierarchyGenerator::IsTypeOf(name);
}

}  // namespace qn::graph

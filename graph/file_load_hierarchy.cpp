#include "frame/host/generator.h"
#include "graph/file_load.h"
#include "graph/occurrence_overrides.h"
#include "graph/path_trimming.h"

// A file that brought instances and references.

namespace qn::graph {

Counted<Reference> FileLoad::BindHierarchy(Instance& root, Reference& loaded) {
    Matrix4<double> matrix;
    node_->GetMatrix(&matrix, 0);
    if (!matrix.IsIdentity(0.0)) loaded.SetProperty(Prop::kLocalMatrix, Var(matrix));
    PrepareFileTable(loaded);
    const String bsId = loaded.GetProperty(Prop::kBsId, 0).ToText();
    if (auto present = FindPresent(bsId)) {
        viewports_.DeleteNew();
        return present;
    }
    auto target = table_.GetOrCreateBsReference(request_.id, bsId);
    if (!target) return nullptr;
    for (int i = 0; i < loaded.GetChildCount(); ++i)
        target->AddChild(loaded.GetChild(i).Get());
    CopyProperties(loaded, *target);
    std::set<Reference*> visited;
    TrimSelectorPaths(&root, target.Get(), visited);
    target->SetTarget(loaded.GetTarget());
    if (node_->GetFlags() & NodeFlag::kFlag8000) target->SetProperty(Prop::kFlag8000, Var(true));
    target = RegisterUnderPrefix(*target);
    table_.loadedReferences.insert(target);
    const auto* rootTable = Cast<LookupTableImpl>(root.GetLookupTable());
    viewports_.BindWanted(*node_, *target, root, rootTable ? rootTable->nodeToInstance : fileNodes_);
    if (k3::Generator::IsPresent(node_.Get(), ClassKey::kHierarchyGenerator))
        k3::Generator::Detach(node_.Get());
    return target;
}

/// Without a generator the file's nodes are all there is: the table is made if need be, and reads the filter.
/// In both cases the nodes tell where they differ from their instances.
void FileLoad::PrepareFileTable(Reference& loaded) {
    Counted<LookupTable> table(loaded.GetLookupTable());
    if (!k3::Generator::IsPresent(node_.Get(), ClassKey::kHierarchyGenerator)) {
        if (!table) {
            fileTable_ = Make<LookupTableImpl>();
            if (!fileTable_) return;
            ReferenceFromNode(*node_, *fileTable_, request_.id, fileNodes_, fileInstances_);
            table = fileTable_;
        }
        table->SetSceneAndContext(&scene_, &context_);
        table->ReadIdFilter();
    }
    CaptureOverrides(*node_, table.Get());
}

/// What the hierarchy already has of this server id. The empty definition that asked for the load is not it.
Counted<Reference> FileLoad::FindPresent(const String& bsId) const {
    auto present = table_.FindReferenceByBsId(bsId);
    const bool isPlaceholder = present && present == request_.placeholder && present->IsLeaf();
    return isPlaceholder ? nullptr : present;
}

void FileLoad::CopyProperties(Reference& loaded, Reference& target) {
    for (int key = kFirstProp; key <= kLastProp; ++key) {
        const PropEnum id{key};
        const Var value = loaded.GetProperty(id, 1);
        if (value.IsEmpty() || id == Prop::kLocalId) continue;
        if (id != Prop::kMetadata) {
            target.SetProperty(id, value);
            continue;
        }
        MergeMetadata(target, value);
        if (fileMetadata_.IsMap()) MergeMetadata(target, fileMetadata_);
    }
}

void FileLoad::MergeMetadata(Reference& target, const Var& metadata) {
    Var present = target.GetProperty(Prop::kMetadata, 0);
    if (present.IsMap())
        present.Merge(metadata, 0);  // in place, the map is shared
    else
        target.SetProperty(Prop::kMetadata, metadata);
}

/// All ids that the file's elements get carry the id of their reference.
Counted<Reference> FileLoad::RegisterUnderPrefix(Reference& target) {
    table_.PushIdPrefix(&target);
    Reference* survivor = target.RegisterInTable(&table_);
    table_.PopIdPrefix();
    return Counted<Reference>(survivor ? survivor : &target);
}

}  // namespace qn::graph

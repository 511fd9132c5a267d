#include "importers/step/step_graph_builder.h"

#include "construction/hierarchy_generator.h"
#include "frame/host/api.h"
#include "frame/host/importer.h"
#include "frame/host/matrix.h"
#include "frame/host/object3d.h"
#include "graph/instance.h"
#include "importers/step/step_metadata.h"

#include <algorithm>

namespace qn::step {
namespace {

using graph::Instance;
using graph::Reference;
namespace Prop = graph::Prop;

Matrix4<double> ToMatrix(const Transform& transform) {
    Matrix4<double> matrix;
    for (std::size_t i = 0; i < transform.size(); ++i)
        matrix.m[i / 4][i % 4] = transform[i];
    return matrix;
}

void SetUnlessEmpty(graph::HierarchyElement& element, graph::PropEnum id, const Var& value) {
    if (value.IsSet()) element.SetProperty(id, value);
}

void Describe(Reference& reference, const Definition& definition) {
    reference.SetProperty(Prop::kName, Var(ToText(definition.name)));
    if (const std::string file = definition.ContentFile(); !file.empty())
        reference.SetTarget(Var(ToText(file)));
    SetUnlessEmpty(reference, Prop::kMetadata, MetadataOf(definition));
    SetUnlessEmpty(reference, Prop::kExternalIds, ExternalIds(definition.productId, definition.versionId));
}

void Describe(Instance& instance, const Use& use) {
    instance.SetProperty(Prop::kName, Var(ToText(use.name)));
    if (use.toParent != kIdentity) instance.SetProperty(Prop::kLocalMatrix, Var(ToMatrix(use.toParent)));
    SetUnlessEmpty(instance, Prop::kMetadata, MetadataOf(use));
    SetUnlessEmpty(instance, Prop::kExternalIds, ExternalIds(use.id, {}));
}

/// The mark of a reference that is no definition of the file.
Var ContainerMark() {
    Var mark;
    mark.At(kFileGroup).At(kFileContainer) = Var(true);
    return mark;
}

}  // namespace

bool GraphBuilder::Build(const String& fileName) {
    table_ = CreateAs<graph::LookupTable>(graph::ClassKey::kLookupTable);
    return table_ && MakeDefinitions() && MakeUses() && MakeRoot(fileName);
}

bool GraphBuilder::MakeDefinitions() {
    references_.reserve(model_.definitions.size());
    for (const Definition& definition : model_.definitions) {
        auto reference = table_->GetOrCreateReference(String());
        if (!reference) return false;
        Describe(*reference, definition);
        references_.push_back(std::move(reference));
    }
    return true;
}

bool GraphBuilder::MakeUses() {
    for (const Use& use : model_.uses) {
        const auto instance = references_[use.child]->CreateInstanceWithId(String());
        if (!instance) return false;
        Describe(*instance, use);
        references_[use.parent]->AddChild(instance.Get());
    }
    return true;
}

bool GraphBuilder::MakeRoot(const String& fileName) {
    const bool hasOneRoot = model_.roots.size() == 1;
    root_ = hasOneRoot ? references_[model_.roots.front()] : table_->GetOrCreateReference(String());
    if (!root_) return false;
    if (!hasOneRoot) root_->SetProperty(Prop::kName, Var(fileName));
    Var metadata = hasOneRoot ? root_->GetProperty(Prop::kMetadata, 0) : ContainerMark();
    AddFileMetadata(model_, metadata);
    root_->SetProperty(Prop::kMetadata, metadata);
    if (hasOneRoot) return true;
    for (const std::size_t index : model_.roots) {
        const auto instance = references_[index]->CreateInstanceWithId(String());
        if (!instance) return false;
        root_->AddChild(instance.Get());
    }
    return true;
}

k3::Material* GraphBuilder::MaterialOf(const Colour& colour) {
    const auto found = std::find_if(materials_.begin(), materials_.end(),
                                    [&](const auto& entry) { return entry.first == colour; });
    if (found != materials_.end()) return found->second.Get();
    auto material = Make<k3::Material>();
    if (material) material->SetColour({colour.red, colour.green, colour.blue, colour.alpha});
    return materials_.emplace_back(colour, std::move(material)).second.Get();
}

void GraphBuilder::SetMesh(std::size_t definition, MeshData data) {
    const auto mesh = Make<k3::Mesh>();
    if (!mesh) return;
    std::vector<k3::MeshGroup> groups;
    for (const MeshPart& part : data.parts) {
        const int slot = mesh->AddSlot(part.colour ? MaterialOf(*part.colour) : nullptr);
        groups.push_back({part.firstIndex, part.indexCount, static_cast<std::uint32_t>(slot)});
    }
    if (mesh->SetGeometry(std::move(data.positions), std::move(data.normals), std::move(data.indices),
                          std::move(groups)))
        references_[definition]->SetTarget(Var(mesh));
}

bool GraphBuilder::AttachTo(k3::Node& top) {
    const auto generator = CreateAs<graph::HierarchyGenerator>(graph::ClassKey::kHierarchyGenerator);
    const auto instance = root_->CreateInstanceWithId(String());
    if (!generator || !instance) return false;
    graph::Selector selector;
    selector.AppendPathElement(instance.Get());
    generator->SetSelector(selector);
    k3::Generator::Attach(&top, generator.Get());
    return true;
}

}  // namespace qn::step

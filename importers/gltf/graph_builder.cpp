#include "importers/gltf/graph_builder.h"

#include "construction/hierarchy_generator.h"
#include "frame/host/api.h"
#include "frame/host/collections.h"
#include "frame/host/context.h"
#include "importers/gltf/accessor_reader.h"
#include "importers/gltf/gltf_error.h"
#include "importers/gltf/gltf_limits.h"
#include "importers/gltf/gltf_metadata.h"
#include "importers/gltf/node_place.h"

namespace qn::gltf {
namespace {

using graph::Instance;
using graph::Reference;
namespace Prop = graph::Prop;

constexpr std::size_t kNodesBetweenReports = 1 << 16;
/// Memory of one use with a place, the table included.
constexpr std::uint64_t kBytesOfCopy = 800;
/// Share of the progress at which the nodes begin and end to become a graph.
constexpr double kFirstShare = 0.3, kLastShare = 0.6;

template <class T>
Counted<T> Made(Counted<T> object) {
    if (!object) throw GltfError("the classes of the graph cannot be made", LoadFailure::kDefect);
    return object;
}

bool IsPlainUse(const Node& node) {
    return node.mesh != kNone && node.childCount == 0 && node.camera == kNone && node.copies == kNone;
}

/// Only tables of ours may be nested deeper, and what is read from the nodes alone keeps them as metadata.
void CheckDepth(const Var& extras, int depth = 1) {
    if (depth > gltf_limits::kDeepestExtras)
        FailAt("/extras",
               "values are nested deeper than " + std::to_string(gltf_limits::kDeepestExtras) + " levels",
               LoadFailure::kLimit);
    if (const VarMap* map = extras.ToMap())
        for (int i = 0; i < map->GetCount(); ++i)
            CheckDepth(map->ValueAt(i), depth + 1);
    if (const VarArray* array = extras.ToArray())
        for (int i = 0; i < array->GetCount(); ++i)
            CheckDepth(array->Get(i), depth + 1);
}

}  // namespace

bool GraphBuilder::Build(const String& fileName) {
    table_ = Made(CreateAs<graph::LookupTable>(graph::ClassKey::kLookupTable));
    AssemblyHierarchy told;
    if (!BuildAssembly(model_, *table_, told, warning_)) {
        CheckDepth(model_.documentExtras);
        scale_ = kMillimetres;
        return BuildFromNodes(fileName);
    }
    scale_ = 1;
    root_ = Made(std::move(told.root));
    top_ = std::move(told.top);
    for (auto& entry : told.shown)
        shown_.push_back({std::move(entry.definition), entry.mesh});
    return true;
}

bool GraphBuilder::BuildFromNodes(const String& fileName) {
    byMesh_.resize(model_.meshes.size());
    if (context_.GetOption(0, kInertGenerators, 0)) table_.Reset();
    root_ = MakeDefinition(fileName);
    root_->SetProperty(Prop::kMetadata, FileMetadata(model_));
    for (const std::uint32_t root : model_.roots) {
        AddNode(root, *root_);
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next == level.end) {
                levels_.pop_back();
                continue;
            }
            const std::uint32_t child = model_.children[level.next++];
            AddNode(child, *level.definition);
            if (++made_ % kNodesBetweenReports == 0 && !Reports()) return false;
        }
    }
    return true;
}

bool GraphBuilder::Reports() {
    const double share = static_cast<double>(made_) / static_cast<double>(model_.nodes.size());
    return context_.ReportProgress(kFirstShare + (kLastShare - kFirstShare) * share);
}

void GraphBuilder::AddNode(std::uint32_t index, Reference& parent) {
    const Node& node = model_.nodes[index];
    const bool isPlain = IsPlainUse(node);
    Counted<Reference> own;
    if (!isPlain) own = MakeDefinition(ToText(model_, node.name));
    Reference& definition = isPlain ? DefinitionOfMesh(node.mesh) : *own;
    const Counted<Instance> use = MakeUse(definition, parent);
    if (node.name.length) use->SetProperty(Prop::kName, Var(ToText(model_, node.name)));
    if (Matrix4<double> place; PlaceOf(model_, index, scale_, place))
        use->SetProperty(Prop::kLocalMatrix, Var(place));
    if (node.extras != kNone) use->SetProperty(Prop::kMetadata, MetadataOf(model_.ExtrasAt(node.extras)));
    if (isPlain) return;
    if (node.camera != kNone) AddView(*own, node.camera, index);
    if (node.copies != kNone)
        AddCopies(node, index, definition);
    else if (node.mesh != kNone)
        shown_.push_back({own, node.mesh});
    if (node.childCount > 0)
        levels_.push_back({node.firstChild, node.firstChild + node.childCount, &definition});
}

/// Each viewport is saved with the camera's name, however many have it.
void GraphBuilder::AddView(Reference& definition, std::uint32_t camera, std::uint32_t node) {
    const std::uint64_t letters = model_.cameras[camera].name.length;
    store_.GetAllowance().Take(letters * sizeof(wchar_t), PointerTo("nodes", node) + "/camera");
    views_.push_back({Counted<Reference>(&definition), camera});
}

std::vector<Matrix4<double>> GraphBuilder::PlacesOfCopies(const Copies& copies, const std::string& pointer) {
    const auto read = [&](std::uint32_t accessor, std::uint32_t components) {
        return accessor == kNone ? std::vector<float>() : ReadFloats(store_, model_, accessor, components);
    };
    const std::vector<float> translations = read(copies.translation, 3), rotations = read(copies.rotation, 4),
                             stretches = read(copies.scale, 3);
    const auto at = [](const std::vector<float>& numbers, std::size_t copy, std::size_t count, double* out) {
        for (std::size_t i = 0; !numbers.empty() && i < count; ++i)
            out[i] = numbers[copy * count + i];
        return numbers.empty() ? nullptr : out;
    };
    store_.GetAllowance().Take(copies.count * kBytesOfCopy, pointer);
    std::vector<Matrix4<double>> places(copies.count);
    for (std::size_t i = 0; i < places.size(); ++i) {
        double translation[3], rotation[4], stretch[3];
        places[i] = PlaceFromParts(at(translations, i, 3, translation), at(rotations, i, 4, rotation),
                                   at(stretches, i, 3, stretch), scale_, pointer);
    }
    return places;
}

/// A node without mesh has no copies that could be seen.
void GraphBuilder::AddCopies(const Node& node, std::uint32_t index, Reference& parent) {
    if (node.mesh == kNone) return;
    const Copies& copies = model_.copies[node.copies];
    std::vector<Matrix4<double>> places;
    try {
        places = PlacesOfCopies(copies, PointerTo("nodes", index));
    } catch (const GltfError& error) {
        if (!structureOnly_ || error.Kind() == LoadFailure::kLimit) throw;
        store_.GetAllowance().TakeUnbacked(copies.count, PointerTo("nodes", index));
        warning_ = std::string("the places of copies are not known: ") + error.what();
        places.resize(copies.count);
    }
    Reference& mesh = DefinitionOfMesh(node.mesh);
    for (const Matrix4<double>& place : places) {
        const Counted<Instance> use = MakeUse(mesh, parent);
        if (place != Matrix4<double>()) use->SetProperty(Prop::kLocalMatrix, Var(place));
    }
}

Reference& GraphBuilder::DefinitionOfMesh(std::uint32_t mesh) {
    Counted<Reference>& definition = byMesh_[mesh];
    if (definition) return *definition;
    definition = MakeDefinition(ToText(model_, model_.meshes[mesh].name));
    if (const Var metadata = MetadataOf(model_.ExtrasAt(model_.meshes[mesh].extras)); metadata.IsSet())
        definition->SetProperty(Prop::kMetadata, metadata);
    shown_.push_back({definition, mesh});
    return *definition;
}

Counted<Reference> GraphBuilder::MakeDefinition(const String& name) {
    auto definition = Made(table_ ? table_->GetOrCreateReference(String())
                                  : CreateAs<Reference>(graph::ClassKey::kReference));
    if (name.NonEmpty()) definition->SetProperty(Prop::kName, Var(name));
    return definition;
}

Counted<Instance> GraphBuilder::MakeUse(Reference& definition, Reference& parent) {
    auto use = Made(definition.CreateInstanceWithId(String()));
    parent.AddChild(use.Get());
    return use;
}

void GraphBuilder::AttachTo(k3::Node& top) {
    const auto generator = Made(CreateAs<graph::HierarchyGenerator>(graph::ClassKey::kHierarchyGenerator));
    if (!top_) top_ = Made(root_->CreateInstanceWithId(String()));
    graph::Selector selector;
    selector.AppendPathElement(top_.Get());
    generator->SetSelector(selector);
    k3::Generator::Attach(&top, generator.Get());
}

}  // namespace qn::gltf

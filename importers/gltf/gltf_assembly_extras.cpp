#include "importers/gltf/gltf_assembly_extras.h"

#include "frame/host/importer.h"
#include "importers/gltf/assembly_tables.h"
#include "importers/gltf/extras_value.h"
#include "importers/gltf/gltf_extras_keys.h"
#include "importers/gltf/node_place.h"

#include <unordered_set>

namespace qn::gltf {
namespace {

using gltf_extras::PropertyForm;
using gltf_extras::PropertyRow;
using graph::Instance;
using graph::Reference;
namespace Prop = graph::Prop;
namespace Word = gltf_extras::Word;

Var PropertyValue(const PropertyRow& row, const Var& json) {
    Matrix4<double> matrix;
    if (row.form == PropertyForm::kMatrix && ReadMatrix(json, matrix)) return Var(matrix);
    return MeantValue(json);
}

/// All but the local id, with which an element is made.
void SetProperties(graph::HierarchyElement& element, const VarMap& row) {
    for (const PropertyRow& property : gltf_extras::kProperties) {
        const Var* json = row.Lookup(Var(property.key));
        if (property.id == Prop::kLocalId) continue;
        if (json && json->IsSet()) element.SetProperty(property.id, PropertyValue(property, *json));
    }
}

/// Ids of one kind, each given away once: two elements of one id would be one element.
class Ids {
public:
    explicit Ids(const char* key) : key_(key) {}

    /// The id that the row asks for; empty if there is none, or if it is taken.
    String Take(const VarMap& row) {
        const Var* id = row.Lookup(key_);
        if (!id || !id->IsText()) return String();
        const String text = id->ToText();
        return taken_.insert(text).second ? text : String();
    }

private:
    Var key_;
    std::unordered_set<String> taken_;
};

constexpr const char* kIdKey = "id";
constexpr const char* kServerIdKey = "serverId";

class Builder {
public:
    Builder(const Model& model, const AssemblyTables& tables, graph::LookupTable& table,
            AssemblyHierarchy& out)
        : model_(model), tables_(tables), table_(table), out_(out) {}

    bool Build() { return MakeDefinitions() && MakeUses() && MakeRoot() && AddOverrides(); }

private:
    Counted<Reference> MakeReference(const VarMap& row) {
        const String id = ids_.Take(row), serverId = serverIds_.Take(row);
        auto reference = serverId.IsEmpty() ? table_.GetOrCreateReference(id)
                                            : table_.GetOrCreateBsReference(id, serverId);
        if (!reference) return reference;
        if (id.NonEmpty()) reference->SetProperty(Prop::kKeepLocalId, Var(true));
        SetProperties(*reference, row);
        if (const Var* file = row.Lookup(Var(Word::kFile)); file && file->IsText())
            reference->SetTarget(*file);
        if (const Var* target = row.Lookup(Var(Word::kTarget))) reference->SetTarget(MeantValue(*target));
        return reference;
    }

    bool MakeDefinitions() {
        references_.reserve(tables_.definitions.size());
        for (const DefinitionEntry& entry : tables_.definitions) {
            references_.push_back(MakeReference(*entry.row));
            if (!references_.back()) return false;
            if (entry.mesh != kNone) out_.shown.push_back({references_.back(), entry.mesh});
        }
        return true;
    }

    bool MakeUses() {
        instances_.reserve(tables_.uses.size());
        for (const UseEntry& entry : tables_.uses) {
            const String id = useIds_.Take(*entry.row), serverId = useServerIds_.Take(*entry.row);
            auto instance = references_[entry.definition]->CreateInstanceWithBsId(id, serverId);
            if (!instance) return false;
            if (id.NonEmpty()) instance->SetProperty(Prop::kKeepLocalId, Var(true));
            SetProperties(*instance, *entry.row);
            if (!entry.row->Lookup(Var(Word::kMatrix))) PlaceByNode(*instance, entry.firstNode);
            if (entry.parent != kNone) references_[entry.parent]->AddChild(instance.Get());
            instances_.push_back(std::move(instance));
        }
        return true;
    }

    /// The numbers are millimetres as they stand.
    void PlaceByNode(Instance& instance, std::uint32_t node) {
        Matrix4<double> matrix;
        if (PlaceOf(model_, node, 1, matrix)) instance.SetProperty(Prop::kLocalMatrix, Var(matrix));
    }

    bool MakeRoot() {
        if (tables_.container == kNone && tables_.roots.size() == 1) {
            out_.top = instances_[tables_.roots.front()];
            out_.root = references_[tables_.uses[tables_.roots.front()].definition];
            return true;
        }
        out_.root = tables_.container != kNone ? references_[tables_.container] : MakeContainer();
        if (!out_.root) return false;
        for (const std::uint32_t root : tables_.roots)
            out_.root->AddChild(instances_[root].Get());
        return true;
    }

    Counted<Reference> MakeContainer() {
        auto container = table_.GetOrCreateReference(String());
        Var mark;
        mark.At(kFileGroup).At(kFileContainer) = Var(true);
        if (container) container->SetProperty(Prop::kMetadata, mark);
        return container;
    }

    bool AddOverrides() {
        for (const OverrideEntry& entry : tables_.overrides) {
            graph::Selector selector;
            for (const std::uint32_t use : entry.path)
                selector.AppendPathElement(instances_[use].Get());
            const Var* attributes = entry.row->Lookup(Var(Word::kAttributes));
            if (const VarMap* rows = attributes ? attributes->ToMap() : nullptr)
                selector.SetAttributes(AttributesOf(*rows));
            instances_[entry.use]->AddSelector(selector);
        }
        return true;
    }

    static Var AttributesOf(const VarMap& rows) {
        Var attributes;
        attributes.InitMap();
        for (const PropertyRow& property : gltf_extras::kProperties)
            if (const Var* json = rows.Lookup(Var(property.key)))
                attributes.At(graph::Key(property.id)) = PropertyValue(property, *json);
        return attributes;
    }

    const Model& model_;
    const AssemblyTables& tables_;
    graph::LookupTable& table_;
    AssemblyHierarchy& out_;
    std::vector<Counted<Reference>> references_;  ///< by definition
    std::vector<Counted<Instance>> instances_;    ///< by use
    Ids ids_{kIdKey}, serverIds_{kServerIdKey}, useIds_{kIdKey}, useServerIds_{kServerIdKey};
};

}  // namespace

bool BuildAssembly(const Model& model, graph::LookupTable& table, AssemblyHierarchy& out,
                   std::string& warning) {
    AssemblyTables tables;
    if (!tables.Read(model)) return false;
    if (!tables.Disagreement().empty()) {
        warning = "read from its nodes alone: " + tables.Disagreement();
        return false;
    }
    return Builder(model, tables, table, out).Build();
}

}  // namespace qn::gltf

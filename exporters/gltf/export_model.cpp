#include "exporters/gltf/export_model.h"

#include "exporters/gltf/model_counts.h"
#include "frame/host/collections.h"
#include "frame/host/importer.h"

#include <algorithm>
#include <unordered_map>

namespace qn::gltf_export {
namespace {

using graph::Instance;
using graph::Reference;
namespace Prop = graph::Prop;

std::string TextOf(const Var& value) {
    return value.IsText() ? value.ToText().ToUtf8() : std::string();
}

/// Node to parent as generation makes it: the definition's own transform first, then that of the use.
Matrix4<double> LocalMatrix(const Reference& reference, const Var& ofUse) {
    Matrix4<double> local, use;
    const Var ofDefinition = reference.GetProperty(Prop::kLocalMatrix, 0);
    if (ofDefinition.IsMatrix()) ofDefinition.copy_to(local);
    if (ofUse.IsMatrix() && ofUse.copy_to(use))
        ofDefinition.IsMatrix() ? local.SetMul(local, use) : void(local = use);
    return local;
}

bool SaysYUp(const Reference& reference) {
    const Var metadata = reference.GetProperty(Prop::kMetadata, 0);
    const Var* group = metadata.IsMap() ? metadata.Lookup(kFileGroup) : nullptr;
    const Var* axis = group ? group->Lookup(kFileUpAxis) : nullptr;
    return axis && axis->IsText() && axis->ToText() == kFileUpAxisY;
}

bool IsUpY(const Assembly& assembly, UpAxis wanted) {
    if (wanted != UpAxis::kByFile) return wanted == UpAxis::kY;
    if (assembly.container) return SaysYUp(*assembly.container);
    return !assembly.roots.empty() &&
           std::all_of(assembly.roots.begin(), assembly.roots.end(),
                       [](const Root& root) { return root.definition && SaysYUp(*root.definition); });
}

class Reader {
public:
    explicit Reader(ExportModel& model) : out_(model) {}

    void Read(const Assembly& assembly) {
        container_ = assembly.container;
        for (const Root& root : assembly.roots)
            if (root.definition) AddUse(kNone, root.instance, *root.definition);
        out_.rootCount = static_cast<std::uint32_t>(out_.uses.size());
        for (std::size_t read = 0; read < out_.definitions.size(); ++read)
            ReadUses(static_cast<std::uint32_t>(read));
        if (assembly.container) AddContainer(*assembly.container);
        for (std::uint32_t use = 0; use < out_.uses.size(); ++use)
            ReadOverrides(use);
    }

private:
    std::uint32_t IndexOf(Reference& reference) {
        const auto [entry, isNew] =
            definitions_.emplace(&reference, static_cast<std::uint32_t>(out_.definitions.size()));
        if (isNew) {
            DefinitionRow row;
            row.reference = &reference;
            row.name = TextOf(reference.GetProperty(Prop::kName, 0));
            out_.definitions.push_back(std::move(row));
        }
        return entry->second;
    }

    void AddUse(std::uint32_t parent, Instance* instance, Reference& reference) {
        UseRow row;
        row.instance = instance;
        row.parent = parent;
        row.definition = IndexOf(reference);
        const Var matrix = instance ? instance->GetProperty(Prop::kLocalMatrix, 0) : Var();
        row.name = instance ? TextOf(instance->GetProperty(Prop::kName, 0)) : std::string();
        row.place = CheckedPlace(reference, matrix);
        row.isTwoNodes = row.place.form == PlaceForm::kTwo;
        row.nodeSaysMatrix = SaysMatrix(reference, matrix, row.place);
        const auto number = static_cast<std::uint32_t>(out_.uses.size());
        if (instance) uses_.emplace(instance, number);
        if (parent == kNone) roots_.emplace(&reference, number);
        out_.uses.push_back(std::move(row));
    }

    static Place CheckedPlace(const Reference& reference, const Var& ofUse) {
        const Matrix4<double> matrix = LocalMatrix(reference, ofUse);
        if (!IsWritablePlace(matrix))
            throw ExportFailure(Outcome::kUnsayable,
                                "\"" + TextOf(reference.GetProperty(Prop::kName, 0)) +
                                    "\": the matrix of a use is not finite, or no affine map");
        return PlaceOf(matrix);
    }

    /// Whether the node alone gives back what the instance stores.
    static bool SaysMatrix(const Reference& reference, const Var& ofUse, const Place& place) {
        if (reference.GetProperty(Prop::kLocalMatrix, 0).IsSet()) return false;
        if (!ofUse.IsMatrix()) return !ofUse.IsSet();
        return place.form == PlaceForm::kMatrix;
    }

    void ReadUses(std::uint32_t parent) {
        Reference& reference = *out_.definitions[parent].reference;
        const auto first = static_cast<std::uint32_t>(out_.uses.size());
        for (int i = 0; i < reference.GetChildCount(); ++i) {
            const Counted<Instance> child = reference.GetChild(i);
            if (child && child->GetReference()) AddUse(parent, child.Get(), *child->GetReference());
        }
        out_.definitions[parent].firstUse = first;
        out_.definitions[parent].useCount = static_cast<std::uint32_t>(out_.uses.size()) - first;
    }

    /// The container is a row of the table, but its uses are the roots.
    void AddContainer(Reference& container) {
        if (definitions_.contains(&container)) return;
        out_.container = IndexOf(container);
    }

    void ReadOverrides(std::uint32_t index) {
        const Instance* instance = out_.uses[index].instance;
        const int count = instance ? instance->GetSelectorCount() : 0;
        for (int i = 0; i < count; ++i)
            AddOverride(index, instance->GetSelector(i));
    }

    /// Whether a path begins with what is no occurrence: the container's use, or a top use that is gone, for
    /// a stored scene does not keep it.
    bool StandsAbove(const Instance* element) const {
        return !element || (container_ && element->GetReference() == container_);
    }

    std::uint32_t KnownUse(const Instance* element) const {
        const auto found = element ? uses_.find(element) : uses_.end();
        return found == uses_.end() ? kNone : found->second;
    }

    /// Paths begin with the use of a root, which a stored scene does not share with its paths: any use of the
    /// root's definition that stands nowhere else is that one.
    std::uint32_t FirstUse(const Instance* element) const {
        const std::uint32_t known = KnownUse(element);
        if (known != kNone) return known;
        const auto root = roots_.find(element->GetReference());
        return root == roots_.end() ? kNone : root->second;
    }

    void AddOverride(std::uint32_t index, const graph::Selector& selector) {
        const Var attributes = selector.GetAttributes();
        if (!attributes.IsMap()) return;
        OverrideRow row;
        row.use = index;
        for (int i = 0; i < selector.GetPathElementCount(); ++i) {
            const Instance* element = selector.GetPathElement(static_cast<unsigned>(i));
            if (i == 0 && StandsAbove(element)) continue;
            const std::uint32_t use = i == 0 ? FirstUse(element) : KnownUse(element);
            if (use == kNone) return;  // leads elsewhere: no occurrence of this tree is meant
            row.path.push_back(use);
        }
        if (row.path.empty() || row.path.back() != index) return;
        row.attributes = attributes;
        row.name = TextOf(selector.GetProperty(Prop::kName, 0));
        Move(row, selector.GetProperty(Prop::kLocalMatrix, 0));
        out_.overrides.push_back(std::move(row));
    }

    void Move(OverrideRow& row, const Var& matrix) {
        row.isMoved = matrix.IsMatrix();
        if (!row.isMoved) return;
        UseRow& use = out_.uses[row.use];
        row.place = CheckedPlace(*out_.definitions[use.definition].reference, matrix);
        use.isTwoNodes = use.isTwoNodes || row.place.form == PlaceForm::kTwo;
        use.nodeSaysMatrix = false;
    }

    ExportModel& out_;
    const Reference* container_ = nullptr;
    std::unordered_map<const Reference*, std::uint32_t> definitions_;
    std::unordered_map<const Instance*, std::uint32_t> uses_;
    std::unordered_map<const Reference*, std::uint32_t> roots_;  ///< first root use of a definition
};

}  // namespace

ExportModel ReadModel(const Assembly& assembly, const Options& options) {
    ExportModel model;
    Reader(model).Read(assembly);
    model.isUpY = IsUpY(assembly, options.up);
    CountNodes(model, options.mostNodes);
    return model;
}

}  // namespace qn::gltf_export

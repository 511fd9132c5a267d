#include "tool/structure.h"

#include "construction/hierarchy_factory.h"
#include "engine/import/external_name.h"
#include "frame/host/api.h"
#include "frame/host/importer.h"
#include "graph/lookup_table.h"
#include "graph/node_content.h"
#include "graph/persistent_selector.h"
#include "graph/stored_selectors.h"
#include "tool/failure.h"
#include "tool/structure_counts.h"

#include <unordered_map>

namespace assembly::tool {
namespace {

using qn::Counted;
using qn::Matrix4;
using qn::Var;
using qn::graph::Instance;
using qn::graph::Reference;
namespace Prop = qn::graph::Prop;

std::string TextOf(const Var& value) {
    return value.IsText() ? value.ToText().ToUtf8() : std::string();
}

/// Whether a path begins with what stands around the roots, which no occurrence shows.
bool StandsInContainer(const qn::graph::Selector& selector) {
    if (selector.GetPathElementCount() < 2) return false;
    const Instance* first = selector.GetPathElement(0);
    return first && first->GetReference() && IsContainer(*first->GetReference());
}

/// Node to parent as generation makes it: the definition's own transform first, then that of the use.
Matrix4<double> LocalMatrix(const Reference* reference, const Var& ofUse) {
    const Var ofDefinition = reference ? reference->GetProperty(Prop::kLocalMatrix, 0) : Var();
    Matrix4<double> local, use;
    if (ofDefinition.IsMatrix()) ofDefinition.copy_to(local);
    if (ofUse.IsMatrix() && ofUse.copy_to(use)) local.SetMul(local, use);
    return local;
}

class Reader {
public:
    explicit Reader(Structure& structure) : out_(structure) {}

    void AddRoot(Instance* instance, Reference* reference) {
        out_.roots.push_back(MakeUse(instance, reference));
        Expand();
    }
    void AddRootsOf(Reference& container) {
        for (int i = 0; i < container.GetChildCount(); ++i) {
            const Counted<Instance> child = container.GetChild(i);
            if (child && child->GetReference()) AddRoot(child.Get(), child->GetReference());
        }
    }

private:
    std::uint32_t IndexOf(Reference* reference) {
        const auto [entry, isNew] =
            known_.emplace(reference, static_cast<std::uint32_t>(out_.definitions.size()));
        if (isNew) {
            Definition definition;
            definition.reference = reference;
            definition.name = TextOf(reference->GetProperty(Prop::kName, 0));
            NoteFile(*reference, definition);
            out_.definitions.push_back(std::move(definition));
        }
        return entry->second;
    }

    static void NoteFile(const Reference& reference, Definition& definition) {
        const Var target = reference.GetTarget();
        if (!target.IsText()) return;
        definition.fileState = FileState::kNotRead;
        definition.file = qn::WithForwardSlashes(target.ToText().ToUtf8());
    }

    Use MakeUse(Instance* instance, Reference* reference) {
        Use use;
        use.instance = instance;
        use.definition = IndexOf(reference);
        if (!instance) return use;
        use.name = TextOf(instance->GetProperty(Prop::kName, 0));
        use.local = LocalMatrix(reference, instance->GetProperty(Prop::kLocalMatrix, 0));
        AddOverrides(use, *instance, reference);
        return use;
    }

    /// What was read without being indexed has no table to give its selectors out.
    void AddOverrides(Use& use, Instance& instance, const Reference* reference) {
        if (instance.GetLookupTable()) {
            for (int i = 0; i < instance.GetSelectorCount(); ++i)
                AddOverride(use, instance.GetSelector(i), reference);
            return;
        }
        const auto* stored = qn::Cast<qn::graph::StoredSelectors>(&instance);
        for (int i = 0; stored && i < stored->size(); ++i) {
            auto* selector = qn::Cast<qn::graph::PersistentSelector>(stored->ValueAt(i));
            if (!selector || stored->KeyAt(i).IsText()) continue;
            if (!resolver_)
                resolver_ = qn::CreateAs<qn::graph::LookupTable>(qn::graph::ClassKey::kLookupTable);
            qn::graph::Selector live;
            if (resolver_) resolver_->ResolvePersistentSelector(live, selector);
            AddOverride(use, live, reference);
        }
    }

    void AddOverride(Use& use, const qn::graph::Selector& selector, const Reference* reference) const {
        Override result;
        const bool skipsFirst = StandsInContainer(selector) || IsFormerRoot(selector);
        for (int i = skipsFirst ? 1 : 0; i < selector.GetPathElementCount(); ++i)
            result.path.push_back(selector.GetPathElement(static_cast<unsigned>(i)));
        result.name = TextOf(selector.GetProperty(Prop::kName, 0));
        const Var local = selector.GetProperty(Prop::kLocalMatrix, 0);
        result.moved = local.IsMatrix();
        if (result.moved) result.local = LocalMatrix(reference, local);
        if (!result.path.empty() && (result.moved || !result.name.empty()))
            use.overrides.push_back(std::move(result));
    }

    /// Whether the path begins with a use of the root that is not the one that stands in the scene now, if it
    /// lives at all.
    bool IsFormerRoot(const qn::graph::Selector& selector) const {
        if (selector.GetPathElementCount() < 2) return false;
        const Instance* first = selector.GetPathElement(0);
        if (!first) return true;
        if (out_.roots.empty() || first == out_.roots.back().instance) return false;
        return first->GetReference() == out_.definitions[out_.roots.back().definition].reference;
    }

    /// Reads the uses of every definition that was met and not read yet.
    void Expand() {
        for (; read_ < out_.definitions.size(); ++read_) {
            Reference& reference = *out_.definitions[read_].reference;
            const auto first = static_cast<std::uint32_t>(out_.uses.size());
            for (int i = 0; i < reference.GetChildCount(); ++i) {
                const Counted<Instance> child = reference.GetChild(i);
                if (!child || !child->GetReference()) continue;
                Use use = MakeUse(child.Get(), child->GetReference());
                ++out_.definitions[use.definition].usedBy;
                out_.uses.push_back(std::move(use));
            }
            Definition& definition = out_.definitions[read_];
            definition.firstUse = first;
            definition.useCount = static_cast<std::uint32_t>(out_.uses.size()) - first;
        }
    }

    Structure& out_;
    std::unordered_map<Reference*, std::uint32_t> known_;
    Counted<qn::graph::LookupTable> resolver_;  // of selectors without table
    std::size_t read_ = 0;
};

/// A scene without generator: the hierarchy that its nodes stand for.
void ReadFromNodes(qn::k3::Node& node, qn::graph::LookupTable& table, Reader& reader) {
    const Counted<Instance> instance = table.GetInstanceOfNode(&node);
    if (instance && instance->GetReference()) reader.AddRoot(instance.Get(), instance->GetReference());
}

Counted<qn::graph::LookupTable> TableOf(qn::k3::Scene& scene, qn::Context& context) {
    const auto factory = qn::CreateAs<qn::graph::HierarchyFactory>(qn::graph::ClassKey::kHierarchyFactory);
    auto table = factory ? factory->CreateLookupTableForScene(&scene, &context) : nullptr;
    if (!table) throw Failure(ExitCode::kDefect, "the hierarchy of the scene could not be built");
    return table;
}

}  // namespace

bool IsContainer(const Reference& reference) {
    const Var metadata = reference.GetProperty(Prop::kMetadata, 0);
    const Var* group = metadata.IsMap() ? metadata.Lookup(qn::kFileGroup) : nullptr;
    const Var* mark = group ? group->Lookup(qn::kFileContainer) : nullptr;
    return mark && mark->ToBool();
}

Structure ReadStructure(qn::k3::Scene& scene, qn::Context& context) {
    Structure structure;
    Reader reader(structure);
    for (qn::k3::Node* node = scene.GetFirstChild(); node; node = node->GetNextSibling()) {
        Reference* root = qn::graph::GeneratedReference(*node);
        if (!root) {
            if (!structure.table) structure.table = TableOf(scene, context);
            ReadFromNodes(*node, *structure.table, reader);
        } else if (IsContainer(*root)) {
            reader.AddRootsOf(*root);
        } else {
            const Counted<Instance> instance = root->GetInstance(root->GetInstanceCount() - 1);
            reader.AddRoot(instance.Get(), root);
        }
        structure.tops.resize(structure.roots.size(), {node, root && IsContainer(*root)});
    }
    CountStructure(structure);
    return structure;
}

}  // namespace assembly::tool

#include "tool/merge_files.h"

#include "construction/hierarchy_factory.h"
#include "engine/import/external_name.h"
#include "engine/runtime/context_impl.h"
#include "engine/scene/named_targets.h"
#include "frame/host/api.h"
#include "frame/host/generator.h"
#include "frame/host/importer.h"
#include "frame/host/parameter_ids.h"
#include "frame/host/scene.h"
#include "graph/lookup_table.h"
#include "graph/node_content.h"
#include "tool/failure.h"

#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace assembly::tool {
namespace {

using qn::Counted;
using qn::String;
using qn::Var;
using qn::graph::GeneratedReference;
using qn::graph::Instance;
using qn::graph::Reference;
namespace Prop = qn::graph::Prop;

Counted<Instance> LastInstance(const Reference& reference) {
    return reference.GetInstance(reference.GetInstanceCount() - 1);
}

int CountViews(const qn::k3::Scene& scene) {
    const auto* views = scene.GetViewports();
    return views ? views->GetCount() : 0;
}

/// Gives a file's top node what tells its hierarchy: the instance of the root and, where views or stored
/// nodes ask for nodes, the table that ties these to their instances.
void BindTop(qn::k3::Node& top, int viewsBefore, qn::Context& context) {
    Reference* root = GeneratedReference(top);
    if (!root) return;
    const bool hasViews = top.GetScene() && CountViews(*top.GetScene()) > viewsBefore;
    if (!top.GetFirstChild() && hasViews) {
        const qn::k3::NamedTargetsAside aside(top);
        qn::k3::Generator::Get(&top)->Generate(&top, &context);
    } else if (top.GetFirstChild()) {
        const auto factory =
            qn::CreateAs<qn::graph::HierarchyFactory>(qn::graph::ClassKey::kHierarchyFactory);
        if (factory) factory->CreateReferenceFromNode(&top, root->GetLookupTable());
    }
    const Counted<Instance> instance = LastInstance(*root);
    if (!top.GetParamObject(qn::Param::kInstance) && instance)
        top.SetParamObject(qn::Param::kInstance, instance.Get());
}

/// Binds what is read while it lives.
class Binding {
public:
    Binding(qn::k3::Scene& scene, qn::Context& context) : context_(static_cast<qn::ContextImpl&>(context)) {
        const int before = CountViews(scene);
        context_.SetImportFunction([this, before](qn::k3::Node& top) {
            if (const Reference* root = GeneratedReference(top)) target_ = root->GetTarget();
            BindTop(top, before, context_);
        });
    }
    ~Binding() { context_.SetImportFunction(nullptr); }
    Binding(const Binding&) = delete;
    Binding& operator=(const Binding&) = delete;

    /// What the root of the file stands for.
    const Var& GetTarget() const { return target_; }

private:
    qn::ContextImpl& context_;
    Var target_;
};

/// The mark of a definition that stands around the roots of a file goes: here it stands for the naming
/// definition, and has its name.
void KeepIdentity(Reference& reference, const Var& name) {
    Var metadata = reference.GetProperty(Prop::kMetadata, 0);
    if (!IsContainer(reference)) return;
    metadata.Remove(Var(qn::kFileGroup));
    reference.SetProperty(Prop::kName, name);
}

class Merger {
public:
    Merger(Session& session, qn::k3::Scene& scene, const NamedFiles& files, const FollowRequest& follow)
        : session_(session), scene_(scene), files_(files), follow_(follow) {
        for (std::uint32_t i = 0; i < files_.files.size(); ++i)
            byPath_.emplace(files_.files[i].path, i);
    }

    void Run() {
        for (qn::k3::Node* node = scene_.GetFirstChild(); node; node = node->GetNextSibling())
            if (Reference* root = GeneratedReference(*node)) Note(*root, 0);
        for (std::size_t at = 0; at < pending_.size(); ++at) {
            const Pending next = pending_[at];
            if (const auto file = FileOf(next)) Merge(*next.definition, *file);
        }
    }

    /// The names that are left.
    std::vector<KeptName> Kept() const {
        std::unordered_map<const Reference*, std::uint32_t> origins;
        for (const Pending& pending : pending_)  // of several, the last one brought the present name
            origins.insert_or_assign(pending.definition.Get(), pending.file);
        std::vector<KeptName> names = KeptNamesOf(scene_, files_.files.front().shown);
        for (KeptName& name : names)
            if (const auto origin = origins.find(name.definition.Get()); origin != origins.end())
                name.namingFile = files_.files[origin->second].shown;
        return names;
    }

private:
    struct Pending {
        Counted<Reference> definition;
        std::uint32_t file;
    };

    /// Definitions that a file brought and that name others.
    void Note(Reference& root, std::uint32_t file) {
        for (const Counted<Reference>& definition : qn::k3::DefinitionsBelow(root))
            if (definition->GetTarget().IsText() && known_.insert(definition.Get()).second)
                pending_.push_back({definition, file});
    }

    /// The file to read for a definition, or none.
    std::optional<std::uint32_t> FileOf(const Pending& pending) const {
        const qn::ExternalFolder folder(files_.files[pending.file].shown, follow_.allowed);
        const auto path = folder.Resolve(pending.definition->GetTarget().ToText().ToUtf8()).path;
        const auto found = byPath_.find(path);
        if (found == byPath_.end() || files_.files[found->second].state != FileState::kRead)
            return std::nullopt;
        return found->second;
    }

    void Merge(Reference& definition, std::uint32_t file) {
        const auto [entry, isNew] = results_.emplace(file, nullptr);
        if (!isNew) {
            MoveUses(definition, *entry->second);
            return;
        }
        entry->second = Read(definition, file);
        Note(*entry->second, file);
    }

    static void MoveUses(const Reference& from, Reference& to) {
        std::vector<Counted<Instance>> uses;
        for (int i = 0; i < from.GetInstanceCount(); ++i)
            if (auto use = from.GetInstance(i); use && use->GetReference() == &from)
                uses.push_back(std::move(use));
        for (const Counted<Instance>& use : uses)
            to.SetInstanceReference(use.Get());
    }

    /// The definition that has the file's content: the naming one, or the one that has the file's server id.
    Counted<Reference> Read(Reference& definition, std::uint32_t file) {
        const Counted<Instance> use = LastInstance(definition);
        const Var name = definition.GetProperty(Prop::kName, 0);
        if (auto* table = definition.GetLookupTable())
            table->SetSceneAndContext(&scene_, &session_.GetContext());
        definition.SetTarget(Var(String::FromUtf8(files_.files[file].shown)));
        const Binding binding(scene_, session_.GetContext());
        definition.ReloadExternalTarget();
        if (session_.GetContext().GetFailure() != qn::LoadFailure::kNone)
            throw Failure(CodeOf(session_.GetContext().GetFailure()),
                          session_.FailureText(files_.files[file].shown, "could not be loaded") + " (" +
                              files_.ChainTo(file) + ")");
        Counted<Reference> result(use && use->GetReference() ? use->GetReference() : &definition);
        KeepIdentity(*result, name);
        if (binding.GetTarget().IsText()) {  // the load took the name off a root that names a file itself
            result->SetTarget(binding.GetTarget());
            pending_.push_back({result, file});
        }
        return result;
    }

    Session& session_;
    qn::k3::Scene& scene_;
    const NamedFiles& files_;
    const FollowRequest& follow_;
    std::unordered_map<std::string, std::uint32_t> byPath_;
    std::unordered_map<std::uint32_t, Counted<Reference>> results_;  // by file
    std::unordered_set<const Reference*> known_;
    std::vector<Pending> pending_;
};

}  // namespace

std::vector<KeptName> MergeNamedFiles(Session& session, qn::k3::Scene& scene, const NamedFiles& files,
                                      const FollowRequest& follow) {
    if (files.CountRead() == 0) return KeptNamesOf(scene, files.files.front().shown);
    for (qn::k3::Node* node = scene.GetFirstChild(); node; node = node->GetNextSibling())
        if (!qn::hack::IsModelViewOrStepViewCameraNode(node) && !GeneratedReference(*node))
            throw Failure(ExitCode::kUsage, files.files.front().shown +
                                                ": has nodes without definitions, into which --load brings "
                                                "nothing");
    Merger merger(session, scene, files, follow);
    merger.Run();
    return merger.Kept();
}

}  // namespace assembly::tool

#include "tool/kept_names.h"

#include "engine/import/moved_name.h"
#include "engine/scene/named_targets.h"
#include "frame/host/property_ids.h"
#include "graph/node_content.h"
#include "services/top_level_nodes.h"
#include "tool/failure.h"
#include "tool/terminal.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <unordered_set>

namespace assembly::tool {
namespace {

namespace fs = std::filesystem;
using qn::Counted;
using qn::String;
using qn::Var;
using qn::graph::Reference;
using qn::k3::Node;

constexpr std::size_t kMostFoldersTold = 5;

/// Where definitions hang in a scene: at generators, and at the instances of nodes.
struct Roots {
    void Add(Reference* reference) {
        if (reference && known.insert(reference).second) found.emplace_back(reference);
    }
    static bool AddOf(Node* node, qn::ParamWord roots) {
        auto& all = *reinterpret_cast<Roots*>(roots);
        all.Add(qn::graph::GeneratedReference(*node));
        if (const auto* instance = qn::graph::CarriedInstance(*node)) all.Add(instance->GetReference());
        return true;
    }

    std::vector<Counted<Reference>> found;
    std::unordered_set<const Reference*> known;
};

std::string TextOf(const Var& value) {
    return value.ToText().ToUtf8();
}

/// The names of one scene on their way to another folder.
class Move {
public:
    explicit Move(const std::string& output) : output_(output), outputPath_(qn::CanonicalPath(output)) {}

    void Add(const KeptName& kept) {
        const std::string folder = fs::path(kept.namingFile).parent_path().string();
        const qn::MovedNames& names = moves_.try_emplace(folder, kept.namingFile, output_).first->second;
        const std::string name = TextOf(kept.definition->GetTarget());
        if (names.LeadsTo(name, outputPath_) && qn::CanonicalPath(kept.namingFile) != outputPath_)
            RefuseSelf(kept, name);
        if (!names.AreChanged()) return;
        const std::optional<std::string> newName = names.Move(name);
        // A folder's name need not be UTF-8.
        if (!newName || String::FromUtf8(*newName).ToUtf8() != *newName) Refuse(kept, name);
        if (*newName == name) return;
        changes_.push_back({kept.definition, *newName});
        if (qn::MovedNames::LeadsOut(*newName)) NoteOutside(folder, name, *newName);
    }
    void Apply() const {
        for (const Change& change : changes_)
            change.definition->SetTarget(Var(String::FromUtf8(change.name)));
    }
    void Warn() const {
        if (outside_.empty()) return;
        std::string text =
            output_ + ": names files outside of its folder, \"" + outside_ + "\" first; reading them takes";
        for (std::size_t i = 0; i < std::min(folders_.size(), kMostFoldersTold); ++i)
            text += " --allow " + folders_[i].second;
        if (folders_.size() > kMostFoldersTold)
            text += " and " + std::to_string(folders_.size() - kMostFoldersTold) + " more";
        text += "; convert --load all takes in their content";
        std::fprintf(stderr, "assembly: %s\n", Printable(text).c_str());
    }

private:
    struct Change {
        Counted<Reference> definition;
        std::string name;
    };

    std::string NamingText(const KeptName& kept, const std::string& name) const {
        const std::string definition = TextOf(kept.definition->GetProperty(qn::graph::Prop::kName, 0));
        return output_ + ": definition \"" + Printable(definition) + "\" of " + Printable(kept.namingFile) +
               " names the file \"" + Printable(name) + "\"";
    }
    [[noreturn]] void Refuse(const KeptName& kept, const std::string& name) const {
        throw Failure(
            ExitCode::kNotWritten,
            NamingText(kept, name) +
                ", and no name leads there from the new folder: one on the way is called what no name "
                "can hold; write beside the old file, or take in the content with convert --load all");
    }
    [[noreturn]] void RefuseSelf(const KeptName& kept, const std::string& name) const {
        throw Failure(ExitCode::kUsage,
                      NamingText(kept, name) + ", which is the file to be written: it would name itself");
    }

    void NoteOutside(fs::path folder, const std::string& name, const std::string& newName) {
        if (outside_.empty()) outside_ = newName;
        const std::string portable = qn::WithForwardSlashes(name);
        if (qn::MovedNames::LeadsOut(portable)) folder = (folder / portable).lexically_normal().parent_path();
        Allow(folder.empty() ? "." : folder.string());
    }
    /// A folder below another one needs no word of its own.
    void Allow(const std::string& folder) {
        if (folder == lastAllowed_) return;
        lastAllowed_ = folder;
        const std::string path = qn::CanonicalPath(folder + "/.") + "/";
        const auto holds = [&](const auto& other) { return path.starts_with(other.first); };
        if (std::any_of(folders_.begin(), folders_.end(), holds)) return;
        std::erase_if(folders_, [&](const auto& other) { return other.first.starts_with(path); });
        folders_.emplace_back(path, folder);
    }

    const std::string& output_;
    const std::string outputPath_;
    std::map<std::string, qn::MovedNames> moves_;  // by folder of the naming file, as typed
    std::vector<Change> changes_;
    std::string lastAllowed_;
    std::string outside_;                                       // the first new name that leads out
    std::vector<std::pair<std::string, std::string>> folders_;  // to be allowed: path, and as typed
};

}  // namespace

std::vector<KeptName> KeptNamesOf(qn::k3::Scene& scene, const std::string& file) {
    Roots roots;
    for (Node* const top : qn::graph::TopLevelNodes(&scene))
        top->Visit(0, &Roots::AddOf, reinterpret_cast<qn::ParamWord>(&roots));
    std::vector<KeptName> names;
    for (Counted<Reference>& definition : qn::k3::DefinitionsBelow(std::move(roots.found)))
        if (definition->GetTarget().IsText()) names.push_back({std::move(definition), file});
    return names;
}

void MoveNames(const std::vector<KeptName>& names, const std::string& output) {
    Move move(output);
    for (const KeptName& name : names)
        move.Add(name);
    move.Apply();
    move.Warn();
}

}  // namespace assembly::tool

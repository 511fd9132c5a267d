#include "frame/host/property_ids.h"
#include "tool/named_files.h"
#include "tool/structure_counts.h"

#include <algorithm>
#include <unordered_map>
#include <utility>

// The definitions of all files, numbered through: those of the first file, then those of the second, and so
// on.

namespace assembly::tool {
namespace {

using qn::Matrix4;

constexpr std::uint32_t kNone = static_cast<std::uint32_t>(-1);

/// Whether the file is one definition. Else it is what stands around its roots.
bool IsOneDefinition(const NamedFile& file) {
    const auto& tops = file.structure.tops;
    return file.structure.roots.size() == 1 && (tops.empty() || !tops.front().inContainer);
}

/// What stands for a definition of one file in the whole.
struct Row {
    std::uint32_t file = 0;
    std::uint32_t local = 0;            ///< index into the structure of the file
    std::uint32_t standsFor = kNone;    ///< number of the definition that takes its place, or none
    std::uint32_t contentFile = kNone;  ///< file whose roots are its uses, or none
    std::uint32_t joined = kNone;       ///< index in the result
};

class Joiner {
public:
    explicit Joiner(NamedFiles& files) : files_(files.files) {}

    Structure Run() {
        for (std::uint32_t f = 0; f < files_.size(); ++f) {
            first_.push_back(static_cast<std::uint32_t>(rows_.size()));
            for (std::uint32_t i = 0; i < files_[f].structure.definitions.size(); ++i)
                rows_.push_back({f, i});
        }
        for (std::uint32_t f = 0; f < files_.size(); ++f)
            for (const FileNaming& naming : files_[f].namings)
                PutContent(first_[f] + naming.definition, naming.file);
        MergeServerIds();
        Emit();
        KeepSources();
        CountStructure(out_);
        return std::move(out_);
    }

private:
    Definition& DefinitionOf(const Row& row) { return files_[row.file].structure.definitions[row.local]; }

    /// The definition that stands for this one in the end.
    std::uint32_t Find(std::uint32_t number) {
        std::uint32_t end = number;
        while (rows_[end].standsFor != kNone)
            end = rows_[end].standsFor;
        while (rows_[number].standsFor != kNone)
            number = std::exchange(rows_[number].standsFor, end);
        return end;
    }

    /// The root of a file takes the place of the definition. Where a file is no single definition, the
    /// first definition that names it gets them as its uses, and takes the place of the others.
    void PutContent(std::uint32_t number, std::uint32_t named) {
        NamedFile& file = files_[named];
        Definition& naming = DefinitionOf(rows_[number]);
        naming.fileState = file.state;
        if (file.state != FileState::kRead) {
            ShareUnread(number, named);
            return;
        }
        if (IsOneDefinition(file)) {
            const std::uint32_t root = first_[named] + file.structure.roots.front().definition;
            Definition& content = DefinitionOf(rows_[root]);
            if (content.name.empty()) content.name = naming.name;
            if (content.file.empty()) content.file = naming.file, content.fileState = FileState::kRead;
            rows_[number].standsFor = root;
            return;
        }
        ShareUnread(number, named);
        if (rows_[number].standsFor == kNone) rows_[number].contentFile = named;
    }

    /// Definitions that name one file are one definition, the first.
    void ShareUnread(std::uint32_t number, std::uint32_t named) {
        const auto [entry, isNew] = namers_.emplace(named, number);
        if (!isNew) rows_[number].standsFor = entry->second;
    }

    bool IsLeaf(std::uint32_t number) {
        const Definition& definition = DefinitionOf(rows_[number]);
        return definition.useCount == 0 && rows_[number].contentFile == kNone &&
               !definition.reference->GetTarget().HoldsInterface();
    }

    /// The first definition of a server id stands for all of it, unless it is empty and a later one is not.
    void MergeServerIds() {
        if (files_.size() == 1) return;
        std::unordered_map<std::string, std::uint32_t> known;
        for (std::uint32_t number = 0; number < rows_.size(); ++number) {
            const auto* reference = DefinitionOf(rows_[number]).reference;
            const qn::Var id = reference->GetProperty(qn::graph::Prop::kBsId, 0);
            if (!id.IsText() || id.ToText().IsEmpty()) continue;
            const std::uint32_t here = Find(number);
            const auto [entry, isNew] = known.emplace(id.ToText().ToUtf8(), here);
            if (isNew) continue;
            const std::uint32_t there = Find(entry->second);
            if (there == here) continue;
            const bool thisWins = IsLeaf(there) && !IsLeaf(here);
            rows_[thisWins ? there : here].standsFor = thisWins ? here : there;
        }
    }

    std::uint32_t IndexOf(std::uint32_t number) {
        Row& row = rows_[Find(number)];
        if (row.joined == kNone) {
            row.joined = static_cast<std::uint32_t>(out_.definitions.size());
            out_.definitions.push_back(DefinitionOf(row));
            order_.push_back(row);
        }
        return row.joined;
    }

    /// Walks from the roots of the first file, parents first.
    void Emit() {
        for (Use& root : files_.front().structure.roots) {
            Take(root, 0);
            out_.roots.push_back(std::move(root));
        }
        for (std::size_t at = 0; at < order_.size(); ++at) {
            const Row row = order_[at];
            const std::uint32_t first = static_cast<std::uint32_t>(out_.uses.size());
            if (row.contentFile != kNone)
                EmitUses(files_[row.contentFile].structure.roots, 0,
                         files_[row.contentFile].structure.roots.size(), row.contentFile);
            const Definition& definition = DefinitionOf(row);
            EmitUses(files_[row.file].structure.uses, definition.firstUse, definition.useCount, row.file);
            out_.definitions[at].firstUse = first;
            out_.definitions[at].useCount = static_cast<std::uint32_t>(out_.uses.size()) - first;
            out_.definitions[at].usedBy = 0;
            out_.definitions[at].occurrences = 0;
        }
        for (const Use& use : out_.uses)
            ++out_.definitions[use.definition].usedBy;
    }

    void EmitUses(std::vector<Use>& uses, std::size_t first, std::size_t count, std::uint32_t file) {
        for (std::size_t i = first; i < first + count; ++i) {
            Take(uses[i], file);
            out_.uses.push_back(std::move(uses[i]));
        }
    }

    /// Points a use of one file at the joined definitions. Roots of files that take a place bring their own
    /// place, and paths lose them.
    void Take(Use& use, std::uint32_t file) {
        const std::uint32_t number = first_[file] + use.definition;
        PlaceContent(use, number);
        const auto* root = LostRoot(file);
        for (Override& override : use.overrides)
            if (root && override.path.size() > 1 && override.path.front() &&
                override.path.front()->GetReference() == root)
                override.path.erase(override.path.begin());
        use.definition = IndexOf(number);
    }

    /// The root of a file whose uses are no part of the whole, or null.
    const qn::graph::Reference* LostRoot(std::uint32_t file) const {
        const Structure& structure = files_[file].structure;
        if (file == 0 || !IsOneDefinition(files_[file])) return nullptr;
        return structure.definitions[structure.roots.front().definition].reference;
    }

    void PlaceContent(Use& use, std::uint32_t number) {
        for (const FileNaming* naming = NamingOf(number); naming;) {
            if (!IsOneDefinition(files_[naming->file])) return;
            const auto& roots = files_[naming->file].structure.roots;
            if (!roots.front().local.IsIdentity(0.0)) use.local.SetMul(roots.front().local, use.local);
            naming = NamingOf(first_[naming->file] + roots.front().definition);
        }
    }

    const FileNaming* NamingOf(std::uint32_t number) const {
        const Row& row = rows_[number];
        const auto& namings = files_[row.file].namings;
        const auto found = std::lower_bound(
            namings.begin(), namings.end(), row.local,
            [](const FileNaming& naming, std::uint32_t local) { return naming.definition < local; });
        return found != namings.end() && found->definition == row.local ? &*found : nullptr;
    }

    void KeepSources() {
        for (NamedFile& file : files_) {
            if (file.scene) out_.sources.emplace_back(file.scene.Get());
            if (file.structure.table) out_.sources.emplace_back(file.structure.table.Get());
        }
        out_.table = files_.front().structure.table;
        out_.tops = files_.front().structure.tops;
    }

    std::vector<NamedFile>& files_;
    std::vector<std::uint32_t> first_;                         // number of the first definition of each file
    std::vector<Row> rows_;                                    // by number
    std::unordered_map<std::uint32_t, std::uint32_t> namers_;  // file to the first definition that names it
    std::vector<Row> order_;                                   // by index in the result
    Structure out_;
};

}  // namespace

Structure JoinFiles(NamedFiles&& files) {
    NamedFile& first = files.files.front();
    if (files.files.size() == 1) {
        first.structure.sources.emplace_back(first.scene.Get());
        return std::move(first.structure);
    }
    return Joiner(files).Run();
}

}  // namespace assembly::tool

#include "tool/named_files.h"

#include "engine/import/external_name.h"
#include "frame/host/property_ids.h"
#include "tool/failure.h"
#include "tool/terminal.h"

#include <algorithm>
#include <filesystem>
#include <unordered_map>
#include <unordered_set>

namespace assembly::tool {
namespace {

namespace limits = named_file_limits;

/// Share of the progress that the first file takes if others follow.
constexpr double kFirstShare = 0.1;

std::string FileNameOf(const std::string& path) {
    return std::filesystem::path(path).filename().string();
}

std::string NameOf(const Definition& definition) {
    return definition.name.empty() ? std::string("(no name)") : "\"" + Printable(definition.name) + "\"";
}

/// A name that no file can have, or that leads through a file, is that of nothing.
bool IsMissing(const std::string& path) {
    std::error_code error;
    const bool isFound = std::filesystem::status(path, error).type() != std::filesystem::file_type::not_found;
    return !isFound || error == std::errc::filename_too_long || error == std::errc::not_a_directory;
}

std::string BsIdOf(const Definition& definition) {
    return definition.reference->GetProperty(qn::graph::Prop::kBsId, 0).ToText().ToUtf8();
}

/// Reads level by level; every file that is met stands in the list once.
class FileReader {
public:
    FileReader(Session& session, const LoadRequest& request, const FollowRequest& follow)
        : session_(session), request_(request), follow_(follow) {}

    NamedFiles Run() {
        const std::size_t openedBefore = session_.GetLoadCount();
        out_.files.emplace_back().shown = request_.file;
        const bool follows = follow_.levels > 0;
        if (follows) session_.SetProgressRange(0, kFirstShare);
        Read(0);
        if (follows) Follow();
        out_.opened = session_.GetLoadCount() - openedBefore;
        return std::move(out_);
    }

private:
    void Follow() {
        out_.files.front().path = qn::CanonicalPath(request_.file);
        known_.emplace(out_.files.front().path, 0);
        for (std::uint32_t at = 0; at < out_.files.size(); ++at) {
            if (at > 0) Enter(at);
            if (out_.files[at].state == FileState::kRead) Scan(at);
        }
        RefuseRings();
        session_.SetProgressRange(0, 1);
        session_.GetContext().ReportProgress(1);
    }

    /// Within the files that are known by now.
    void ShowProgress(std::uint32_t at) {
        const double step = (1 - kFirstShare) / static_cast<double>(out_.files.size());
        shown_ = std::max(shown_, kFirstShare + step * at);
        session_.SetProgressRange(shown_, std::max(shown_, kFirstShare + step * (at + 1)));
    }

    /// Reads a file that was named, if it is there and within the levels.
    void Enter(std::uint32_t at) {
        NamedFile& file = out_.files[at];
        if (file.level > follow_.levels) return;
        if (file.level > limits::kMostLevels) FailOnLimit(at, "levels of files", limits::kMostLevels);
        if (IsMissing(file.path)) {
            file.state = FileState::kMissing;
            return;
        }
        ShowProgress(at);
        ReadNamed(at);
    }

    void Read(std::uint32_t at) {
        LoadRequest request = request_;
        request.file = out_.files[at].shown;
        out_.files[at].scene = session_.Load(request);
        out_.files[at].structure = ReadStructure(*out_.files[at].scene, session_.GetContext());
        out_.files[at].state = FileState::kRead;
    }

    void ReadNamed(std::uint32_t at) {
        try {
            Read(at);
        } catch (const Failure& failure) {
            throw Failure(failure.Code(), std::string(failure.what()) + " (" + out_.ChainTo(at) + ")");
        }
    }

    /// Notes the files that a file's definitions name.
    void Scan(std::uint32_t at) {
        const qn::ExternalFolder folder(out_.files[at].shown, follow_.allowed);
        const std::size_t count = out_.files[at].structure.definitions.size();
        for (std::uint32_t i = 0; i < count; ++i)
            NoteContent(out_.files[at].structure.definitions[i]);
        for (std::uint32_t i = 0; i < count; ++i) {
            const Definition& definition = out_.files[at].structure.definitions[i];
            if (definition.fileState == FileState::kNone || HasContentElsewhere(definition)) continue;
            AddNaming(at, i, folder);
        }
    }

    /// A definition with content makes it needless to read a file for its server id.
    void NoteContent(const Definition& definition) {
        if (definition.fileState != FileState::kNone || definition.useCount == 0) return;
        if (std::string id = BsIdOf(definition); !id.empty()) withContent_.insert(std::move(id));
    }
    bool HasContentElsewhere(const Definition& definition) const {
        const std::string id = withContent_.empty() ? std::string() : BsIdOf(definition);
        return !id.empty() && withContent_.count(id) != 0;
    }

    void AddNaming(std::uint32_t at, std::uint32_t definition, const qn::ExternalFolder& folder) {
        const std::string name = out_.files[at].structure.definitions[definition].file;
        const qn::ExternalPath path = folder.Resolve(name);
        if (path.fault != qn::NameFault::kNone) RefuseName(at, definition, path.fault);
        const auto next = static_cast<std::uint32_t>(out_.files.size());
        const auto [entry, isNew] = known_.emplace(path.path, next);
        if (isNew) {
            NamedFile& file = out_.files.emplace_back();
            file.shown = path.shown;
            file.path = path.path;
            file.level = out_.files[at].level + 1;
            file.namedBy = at;
            file.naming = static_cast<std::uint32_t>(out_.files[at].namings.size());
        } else {
            ++out_.files[entry->second].otherNamings;
        }
        out_.files[at].namings.push_back({definition, entry->second, name});
        if (out_.files.size() > limits::kMostFiles) FailOnLimit(at, "files", limits::kMostFiles);
    }

    [[noreturn]] void RefuseName(std::uint32_t at, std::uint32_t definition, qn::NameFault fault) const {
        const Definition& naming = out_.files[at].structure.definitions[definition];
        std::string text = out_.files[at].shown + ": definition " + NameOf(naming) + " names the file \"" +
                           Printable(naming.file) + "\", which " + qn::DescribeFault(fault);
        if (fault == qn::NameFault::kOutside) text += " (--allow DIR lets files lie below DIR, too)";
        if (at > 0) text += " (" + out_.ChainTo(at) + ")";
        throw Failure(ExitCode::kUnreadable, text);
    }

    [[noreturn]] void FailOnLimit(std::uint32_t at, const char* what, std::uint32_t limit) const {
        throw Failure(ExitCode::kLimit, request_.file + ": the assembly has more than " +
                                            std::to_string(limit) + " " + what + ", met at " +
                                            out_.files[at].shown);
    }

    /// Goes down the namings, depth first; a naming of a file on the way down closes a ring.
    void RefuseRings() const {
        enum class Mark : std::uint8_t { kNew, kOnTheWay, kDone };
        struct Step {
            std::uint32_t file;
            std::size_t next;
        };
        std::vector<Mark> marks(out_.files.size(), Mark::kNew);
        std::vector<Step> way{{0, 0}};
        marks[0] = Mark::kOnTheWay;
        while (!way.empty()) {
            Step& step = way.back();
            const std::vector<FileNaming>& namings = out_.files[step.file].namings;
            if (step.next == namings.size()) {
                marks[step.file] = Mark::kDone;
                way.pop_back();
                continue;
            }
            const FileNaming& naming = namings[step.next++];
            if (marks[naming.file] == Mark::kDone) continue;
            const bool closes = marks[naming.file] == Mark::kOnTheWay;
            marks[naming.file] = Mark::kOnTheWay;
            way.push_back({naming.file, 0});
            if (!closes) continue;
            std::string chain = FileNameOf(request_.file);
            for (std::size_t i = 0; i + 1 < way.size(); ++i)
                chain += " -> " + out_.files[way[i].file].namings[way[i].next - 1].name;
            throw Failure(ExitCode::kUnreadable, request_.file + ": a file names itself: " + chain);
        }
    }

    Session& session_;
    const LoadRequest& request_;
    const FollowRequest& follow_;
    NamedFiles out_;
    std::unordered_map<std::string, std::uint32_t> known_;  // by path
    std::unordered_set<std::string> withContent_;           // server ids
    double shown_ = 0;                                      // of the progress
};

}  // namespace

std::size_t NamedFiles::CountNamed() const {
    if (files.size() > 1) return files.size() - 1;
    std::unordered_set<std::string_view> names;
    for (const Definition& definition : files.front().structure.definitions)
        if (definition.fileState != FileState::kNone) names.insert(definition.file);
    return names.size();
}

std::size_t NamedFiles::CountMissing() const {
    return static_cast<std::size_t>(std::count_if(
        files.begin(), files.end(), [](const NamedFile& file) { return file.state == FileState::kMissing; }));
}

std::size_t NamedFiles::CountRead() const {
    const auto read = std::count_if(files.begin(), files.end(), [](const NamedFile& file) {
        return file.level > 0 && file.state == FileState::kRead;
    });
    return static_cast<std::size_t>(read);
}

std::string NamedFiles::ChainTo(std::uint32_t file) const {
    std::vector<std::string> names;
    for (; file != 0; file = files[file].namedBy)
        names.push_back(files[files[file].namedBy].namings[files[file].naming].name);
    std::string chain = FileNameOf(files.front().shown);
    for (auto name = names.rbegin(); name != names.rend(); ++name)
        chain += " -> " + *name;
    return chain;
}

NamedFiles ReadNamedFiles(Session& session, const LoadRequest& request, const FollowRequest& follow) {
    return FileReader(session, request, follow).Run();
}

}  // namespace assembly::tool

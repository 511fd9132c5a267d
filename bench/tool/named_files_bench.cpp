// Assemblies of many files, each used a hundred times: reading and joining costs by files.

#include "bench/support/shapes.h"
#include "tests/support/file_assembly.h"
#include "tests/support/temp_folder.h"
#include "tool/named_files.h"

#include <map>

namespace qn::bench {
namespace {

namespace tool = assembly::tool;

constexpr int kUses = 100;

void Write(const test::TempFolder& folder, const std::string& name,
           const std::vector<test::FilePart>& parts) {
    folder.Write(name, test::FileAssembly(name, parts));
}

/// A folder with "top.qn", which names so many part files; made once.
const test::TempFolder& FolderOf(std::int64_t files) {
    static std::map<std::int64_t, test::TempFolder> folders;
    const auto [entry, isNew] = folders.try_emplace(files);
    if (!isNew) return entry->second;
    std::vector<test::FilePart> parts;
    for (std::int64_t i = 0; i < files; ++i) {
        const std::string name = "part" + std::to_string(i) + ".qn";
        Write(entry->second, name, {});
        parts.push_back({"part", name, kUses});
    }
    Write(entry->second, "top.qn", parts);
    return entry->second;
}

void BM_ReadNamedFiles(benchmark::State& state) {
    const std::int64_t files = state.range(0);
    tool::LoadRequest request;
    request.file = FolderOf(files).File("top.qn").ToUtf8();
    request.structureOnly = request.graphOnly = true;
    tool::FollowRequest follow;
    follow.levels = tool::FollowRequest::kAllLevels;
    for (auto _ : state) {
        tool::Session session(tool::ProgressStyle::kNone);
        const tool::FollowedStructure whole = tool::ReadFollowed(session, request, follow);
        if (whole.structure.occurrences != static_cast<std::uint64_t>(files * kUses + 1) ||
            whole.filesRead != static_cast<std::size_t>(files))
            state.SkipWithError("not the assembly that was written");
    }
    CountItems(state, files);
}
BENCHMARK(BM_ReadNamedFiles)->Arg(100)->Arg(1'000)->Arg(10'000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace qn::bench

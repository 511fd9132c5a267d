// Loading a glTF file into a scene with its hierarchy, beside what another reader of the format needs for the
// parse alone. Each load is a process of its own, so that its peak memory is its own; filter for
// "(Load|Parse)Gltf", as memory that other benchmarks freed in this process would be used again for nothing.

#include "bench/importers/gltf_shapes.h"
#include "bench/support/shapes.h"
#include "engine/runtime/module_folder.h"
#include "frame/host/api.h"
#include "frame/host/importer.h"
#include "frame/host/parameter_ids.h"
#include "frame/host/scene.h"
#include "tests/support/temp_folder.h"

#include <benchmark/benchmark.h>
#include <tiny_gltf.h>

#include <malloc.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <functional>
#include <map>
#include <string>

namespace qn::bench {
namespace {

/// What a child process tells of its load.
struct Report {
    bool done = false;
    double seconds = 0;
    long before = 0;  ///< resident KiB when the load began
};

struct Measure {
    bool done = false;
    double seconds = 0;
    double bytes = 0;  ///< peak above the beginning
};

long ResidentKib() {
    long total = 0, resident = 0;
    if (std::FILE* file = std::fopen("/proc/self/statm", "r")) {
        if (std::fscanf(file, "%ld %ld", &total, &resident) != 2) resident = 0;
        std::fclose(file);
    }
    return resident * (::sysconf(_SC_PAGESIZE) / 1024);
}

[[noreturn]] void RunChild(int out, const std::function<bool()>& load) {
    Report report;
    report.before = ResidentKib();
    const auto start = std::chrono::steady_clock::now();
    report.done = load();
    report.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    const bool written = ::write(out, &report, sizeof(report)) == sizeof(report);
    ::_exit(written ? 0 : 1);
}

Measure MeasureInChild(const std::function<bool()>& load) {
    int ends[2];
    if (::pipe(ends) != 0) return {};
    ::malloc_trim(0);  // what this process has freed would be the child's for nothing
    const pid_t child = ::fork();
    if (child == 0) RunChild(ends[1], load);
    Report report;
    ::close(ends[1]);
    const bool told = ::read(ends[0], &report, sizeof(report)) == sizeof(report);
    ::close(ends[0]);
    rusage usage{};
    int status = 0;
    const bool ended = ::wait4(child, &status, 0, &usage) == child;
    return {told && ended && report.done, report.seconds,
            static_cast<double>(usage.ru_maxrss - report.before) * 1024};
}

/// The file of the present benchmark, written once.
std::string FileOf(benchmark::State& state) {
    static const test::TempFolder folder;
    static std::map<std::string, std::string> files;
    const auto shape = static_cast<GltfShape>(state.range(1));
    const std::string name = std::to_string(state.range(0)) + "_" + NameOf(shape) + ".gltf";
    auto [entry, isNew] = files.try_emplace(name);
    if (isNew) entry->second = folder.Write(name, GltfText(state.range(0), shape)).ToUtf8();
    state.SetLabel(NameOf(shape));
    return entry->second;
}

void Run(benchmark::State& state, bool (*load)(const std::string& file)) {
    const std::string file = FileOf(state);
    const auto nodes = static_cast<double>(state.range(0));
    Measure last;
    double seconds = 0;
    for (auto _ : state) {
        last = MeasureInChild([&] { return load(file); });
        if (!last.done) state.SkipWithError("the file was not loaded");
        state.SetIterationTime(last.seconds);
        seconds += last.seconds;
    }
    CountItems(state, state.range(0));
    SetFigures(state, NameOf(static_cast<GltfShape>(state.range(1))),
               {{"us_per_node", seconds / static_cast<double>(state.iterations()) / nodes * 1e6},
                {"bytes_per_node", last.bytes / nodes},
                {"peak_MiB", last.bytes / (1 << 20)}});
}

/// As those who ask for definitions and uses load it, or with a table of all elements, too.
bool LoadIntoScene(const std::string& file, bool indexed) {
    const auto context = api->CreateContext(0, 0);
    context->SetOption(kInertGenerators, indexed ? 0 : 1);
    Var options;
    options.At(LoadOption::kStructureOnly) = Var(true);
    context->SetParamVar(Param::kLoadOptions, options);
    auto scene = Make<k3::Scene>();
    const k3::Node* top = scene->LoadFile(String::FromUtf8(file).c_str(), context.Get(), 0, Guid());
    const bool loaded = top && k3::Generator::Get(top);
    static_cast<void>(scene.Detach());  // the process ends here
    return loaded;
}

bool ParseWithTinyGltf(const std::string& file) {
    auto* model = new tinygltf::Model;
    tinygltf::TinyGLTF parser;
    std::string error, warning;
    return parser.LoadASCIIFromFile(model, &error, &warning, file);
}

void BM_LoadGltf(benchmark::State& state) {
    SetModuleFolder(String::FromUtf8(ASSEMBLY_LIB_DIR));
    Run(state, [](const std::string& file) { return LoadIntoScene(file, false); });
}
void BM_LoadGltfIndexed(benchmark::State& state) {
    SetModuleFolder(String::FromUtf8(ASSEMBLY_LIB_DIR));
    Run(state, [](const std::string& file) { return LoadIntoScene(file, true); });
}
void BM_ParseGltfElsewhere(benchmark::State& state) {
    Run(state, &ParseWithTinyGltf);
}

void AllGltfSizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"", ""})->Unit(benchmark::kMillisecond)->UseManualTime();
    for (const auto shape : {GltfShape::kFlat, GltfShape::kTwoLevels, GltfShape::kNamed})
        for (std::int64_t size = 1'000; size <= 1'000'000; size *= 10)
            benchmark->Args({size, static_cast<std::int64_t>(shape)});
}
BENCHMARK(BM_LoadGltf)->Apply(AllGltfSizes);
BENCHMARK(BM_LoadGltfIndexed)->Apply(AllGltfSizes);
BENCHMARK(BM_ParseGltfElsewhere)->Apply(AllGltfSizes);

}  // namespace
}  // namespace qn::bench

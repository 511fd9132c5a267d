// Scene files: the compact form costs by definitions and uses, the expanded form by occurrences.

#include "bench/support/shapes.h"
#include "engine/stream/scene_file.h"
#include "frame/host/scene.h"
#include "tests/support/generated_scene.h"

namespace qn::bench {
namespace {

/// A scene whose top node carries a generator for the assembly, with or without its nodes.
Counted<k3::Scene> SceneOf(const test::Assembly& assembly, Context& context, bool generate) {
    auto scene = test::GeneratedScene(assembly);
    if (generate) {
        k3::Node* top = scene->GetFirstChild();
        k3::Generator::Get(top)->Generate(top, &context);
    }
    return scene;
}

std::int64_t ItemsOf(const test::AssemblyShape& shape, bool expand) {
    return expand ? test::CountOccurrences(shape) : test::CountUses(shape);
}

void Save(benchmark::State& state, bool expand) {
    const test::AssemblyShape shape = ShapeOf(state);
    const test::Assembly assembly(shape);
    const auto context = api->CreateContext(0, 0);
    const auto scene = SceneOf(assembly, *context, expand);
    SceneSaveOptions options;
    options.expand = expand;
    std::size_t bytes = 0;
    for (auto _ : state)
        bytes = SaveSceneToBytes(*scene, *context, options).size();
    CountItems(state, ItemsOf(shape, expand));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes));
}

void Load(benchmark::State& state, bool expand) {
    const test::AssemblyShape shape = ShapeOf(state);
    const auto context = api->CreateContext(0, 0);
    std::string bytes;
    {
        const test::Assembly assembly(shape);
        SceneSaveOptions options;
        options.expand = expand;
        bytes = SaveSceneToBytes(*SceneOf(assembly, *context, expand), *context, options);
    }
    Counted<k3::Scene> scene;
    for (auto _ : state) {
        state.PauseTiming();
        scene = Make<k3::Scene>();
        state.ResumeTiming();
        if (!LoadSceneFromBytes(bytes, L"bench", *scene, *context)) state.SkipWithError("not loaded");
    }
    CountItems(state, ItemsOf(shape, expand));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(bytes.size()));
}

void BM_SaveCompact(benchmark::State& state) {
    Save(state, false);
}
BENCHMARK(BM_SaveCompact)->Apply(AllSizes);
void BM_LoadCompact(benchmark::State& state) {
    Load(state, false);
}
BENCHMARK(BM_LoadCompact)->Apply(AllSizes);
void BM_SaveExpanded(benchmark::State& state) {
    Save(state, true);
}
BENCHMARK(BM_SaveExpanded)->Apply(AllSizes);
void BM_LoadExpanded(benchmark::State& state) {
    Load(state, true);
}
BENCHMARK(BM_LoadExpanded)->Apply(AllSizes);

}  // namespace
}  // namespace qn::bench

// Between the scene tree and the graph.

#include "bench/support/shapes.h"
#include "construction/hierarchy_factory.h"
#include "frame/host/scene.h"
#include "graph/lookup_table.h"
#include "tests/support/assembly.h"

namespace qn::bench {
namespace {

Counted<graph::HierarchyFactory> MakeFactory() {
    return CreateAs<graph::HierarchyFactory>(graph::ClassKey::kHierarchyFactory);
}

void BM_SceneToHierarchy(benchmark::State& state) {
    const test::AssemblyShape shape = ShapeOf(state);
    const auto factory = MakeFactory();
    const auto context = api->CreateContext(0, 0);
    Counted<k3::Scene> scene;
    Counted<graph::LookupTable> table;
    for (auto _ : state) {
        state.PauseTiming();
        table = nullptr;
        scene = Make<k3::Scene>();
        test::BuildNodes(shape, *scene);
        state.ResumeTiming();
        table = factory->CreateLookupTableForScene(scene.Get(), context.Get());
    }
    CountItems(state, test::CountOccurrences(shape));
}
BENCHMARK(BM_SceneToHierarchy)->Apply(AllSizes);

void BM_HierarchyToScene(benchmark::State& state) {
    const test::AssemblyShape shape = ShapeOf(state);
    const test::Assembly assembly(shape);
    const auto factory = MakeFactory();
    graph::Selector top;
    top.AppendPathElement(assembly.RootInstance());
    Counted<k3::Scene> scene;
    for (auto _ : state) {
        state.PauseTiming();
        scene = Make<k3::Scene>();
        k3::Node* root = scene->CreateEmptyNode(0, 0, 0);
        assembly.Table()->Rebuild();
        state.ResumeTiming();
        benchmark::DoNotOptimize(factory->GenerateNodes(top, root));
    }
    CountItems(state, test::CountOccurrences(shape));
}
BENCHMARK(BM_HierarchyToScene)->Apply(AllSizes);

}  // namespace
}  // namespace qn::bench

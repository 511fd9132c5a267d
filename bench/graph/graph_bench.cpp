// Elements, their registration, and looking them up.

#include "bench/support/shapes.h"
#include "frame/host/api.h"
#include "graph/lookup_table.h"
#include "tests/support/assembly.h"

#include <optional>

namespace qn::bench {
namespace {

void BM_MakeElements(benchmark::State& state) {
    const test::AssemblyShape shape = ShapeOf(state);
    std::optional<test::Assembly> made;
    for (auto _ : state) {
        state.PauseTiming();
        made.reset();
        state.ResumeTiming();
        made.emplace(shape);
    }
    CountItems(state, test::CountUses(shape));
}
BENCHMARK(BM_MakeElements)->Apply(AllSizes);

void BM_Register(benchmark::State& state) {
    const test::AssemblyShape shape = ShapeOf(state);
    test::AssemblyOptions options;
    options.table = false;
    std::optional<test::Assembly> made;
    Counted<graph::LookupTable> table;
    for (auto _ : state) {
        state.PauseTiming();
        table = nullptr;
        made.reset();
        made.emplace(shape, options);
        table = CreateAs<graph::LookupTable>(graph::ClassKey::kLookupTable);
        state.ResumeTiming();
        benchmark::DoNotOptimize(made->Root()->RegisterInTable(table.Get()));
    }
    // Registration goes by occurrence: a shared definition is entered once for each use.
    CountItems(state, test::CountOccurrences(shape));
}
BENCHMARK(BM_Register)->Apply(AllSizes);

std::vector<String> IdsOf(const test::Assembly& assembly) {
    std::vector<String> ids;
    for (const auto& definition : assembly.Shape().definitions) {
        const graph::Reference* reference = assembly.Ref(definition.name);
        for (int i = 0; i < reference->GetChildCount(); ++i)
            ids.push_back(reference->GetChild(i)->GetProperty(graph::Prop::kLocalId, 0).ToText());
    }
    return ids;
}

void BM_FindById(benchmark::State& state) {
    const test::AssemblyShape shape = ShapeOf(state);
    const test::Assembly assembly(shape);
    const std::vector<String> ids = IdsOf(assembly);
    for (auto _ : state)
        for (const String& id : ids)
            benchmark::DoNotOptimize(assembly.Table()->FindInstanceById(id));
    CountItems(state, static_cast<std::int64_t>(ids.size()));
}
BENCHMARK(BM_FindById)->Apply(AllSizes);

}  // namespace
}  // namespace qn::bench

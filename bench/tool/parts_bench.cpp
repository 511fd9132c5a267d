// Bills of materials: all but the list of occurrences cost by definitions and uses.

#include "bench/support/shapes.h"
#include "frame/host/scene.h"
#include "tests/support/generated_scene.h"
#include "tool/parts_table.h"

namespace qn::bench {
namespace {

using assembly::tool::PartsOptions;
using assembly::tool::PartsStructure;

void Parts(benchmark::State& state, PartsStructure structure, bool byUses) {
    const test::AssemblyShape shape = ShapeOf(state);
    const test::Assembly assembly(shape);
    const auto scene = test::GeneratedScene(assembly);
    const auto context = api->CreateContext(0, 0);
    const assembly::tool::Structure read = assembly::tool::ReadStructure(*scene, *context);
    PartsOptions options;
    options.structure = structure;
    options.once = byUses;
    std::uint64_t total = 0;
    for (auto _ : state) {
        assembly::tool::PartsTable table(read, options);
        table.Run([&](const assembly::tool::PartsRow& row) {
            total += row.total;
            return true;
        });
    }
    benchmark::DoNotOptimize(total);
    CountItems(state, byUses ? test::CountUses(shape) : test::CountOccurrences(shape));
}

void BM_PartsFlat(benchmark::State& state) {
    Parts(state, PartsStructure::kFlat, true);
}
BENCHMARK(BM_PartsFlat)->Apply(AllSizes);

void BM_PartsSingle(benchmark::State& state) {
    Parts(state, PartsStructure::kSingle, true);
}
BENCHMARK(BM_PartsSingle)->Apply(AllSizes);

void BM_PartsOnce(benchmark::State& state) {
    Parts(state, PartsStructure::kMulti, true);
}
BENCHMARK(BM_PartsOnce)->Apply(AllSizes);

void BM_PartsMulti(benchmark::State& state) {
    Parts(state, PartsStructure::kMulti, false);
}
BENCHMARK(BM_PartsMulti)->Apply(AllSizes);

void BM_PartsOccurrences(benchmark::State& state) {
    Parts(state, PartsStructure::kOccurrences, false);
}
BENCHMARK(BM_PartsOccurrences)->Apply(AllSizes);

void BM_ReadStructure(benchmark::State& state) {
    const test::AssemblyShape shape = ShapeOf(state);
    const test::Assembly assembly(shape);
    const auto scene = test::GeneratedScene(assembly);
    const auto context = api->CreateContext(0, 0);
    for (auto _ : state)
        benchmark::DoNotOptimize(assembly::tool::ReadStructure(*scene, *context).occurrences);
    CountItems(state, test::CountUses(shape));
}
BENCHMARK(BM_ReadStructure)->Apply(AllSizes);

}  // namespace
}  // namespace qn::bench

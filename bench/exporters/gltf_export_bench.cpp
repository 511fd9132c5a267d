// Writing glTF: one node for each occurrence, while memory goes by definitions and uses.

#include "bench/support/shapes.h"
#include "exporters/gltf/gltf_export.h"
#include "frame/host/api.h"
#include "tests/support/assembly.h"
#include "tests/support/temp_folder.h"

#include <filesystem>

namespace qn::bench {
namespace {

void BM_ExportGltf(benchmark::State& state) {
    const test::AssemblyShape shape = ShapeOf(state);
    const test::Assembly made(shape);
    const auto context = api->CreateContext(0, 0);
    const test::TempFolder folder;
    const std::string path = (folder.Path() / "bench.glb").string();
    const gltf_export::Assembly assembly{{{made.RootInstance(), made.Root()}}};
    for (auto _ : state) {
        const auto result = gltf_export::WriteGltf(assembly, path, {}, *context);
        if (result.outcome != gltf_export::Outcome::kDone) state.SkipWithError(result.error.c_str());
    }
    CountItems(state, test::CountOccurrences(shape));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(std::filesystem::file_size(path)));
}
BENCHMARK(BM_ExportGltf)->Apply(AllSizes)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace qn::bench

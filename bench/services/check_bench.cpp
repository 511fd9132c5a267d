// A check against the load that comes before it: the timed part is the check, "load_ms" is the load of the
// same bytes in the same run, "share" the one divided by the other.

#include "bench/support/shapes.h"
#include "engine/stream/scene_file.h"
#include "engine/stream/stored_generator.h"
#include "frame/host/scene.h"
#include "tests/support/generated_scene.h"
#include "tool/scene_check.h"

#include <chrono>

namespace qn::bench {
namespace {

using Clock = std::chrono::steady_clock;

double Seconds(Clock::duration time) {
    return std::chrono::duration<double>(time).count();
}

std::string BytesOf(const test::AssemblyShape& shape, Context& context, bool expand) {
    const test::Assembly assembly(shape);
    const auto scene = test::GeneratedScene(assembly);
    k3::Node* const top = scene->GetFirstChild();
    if (expand) k3::Generator::Get(top)->Generate(top, &context);
    SceneSaveOptions options;
    options.expand = expand;
    return SaveSceneToBytes(*scene, context, options);
}

void Check(benchmark::State& state, bool expand) {
    const test::AssemblyShape shape = ShapeOf(state);
    const auto context = api->CreateContext(0, 0);
    const std::string bytes = BytesOf(shape, *context, expand);
    // As the tool loads: generators index nothing unless nodes are stored below them.
    context->SetOption(kInertGenerators, expand ? 0 : 1);
    double loading = 0, checking = 0;
    for (auto _ : state) {
        const auto scene = Make<k3::Scene>();
        const auto start = Clock::now();
        if (!LoadSceneFromBytes(bytes, L"bench", *scene, *context)) state.SkipWithError("not loaded");
        const auto loaded = Clock::now();
        if (!assembly::tool::CheckScene(*scene).empty()) state.SkipWithError("findings in a sound file");
        const double check = Seconds(Clock::now() - loaded);
        loading += Seconds(loaded - start), checking += check;
        state.SetIterationTime(check);
    }
    CountItems(state, test::CountOccurrences(shape));
    SetFigures(state, NameOfShape(state),
               {{"load_ms", 1e3 * loading / static_cast<double>(state.iterations())},
                {"share", checking / loading}});
}

void BM_CheckCompact(benchmark::State& state) {
    Check(state, false);
}
BENCHMARK(BM_CheckCompact)->Apply(AllSizes)->UseManualTime();
void BM_CheckExpanded(benchmark::State& state) {
    Check(state, true);
}
BENCHMARK(BM_CheckExpanded)->Apply(AllSizes)->UseManualTime();

}  // namespace
}  // namespace qn::bench

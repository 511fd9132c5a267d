// Switching between the structures of a scene.

#include "bench/support/shapes.h"
#include "engine/stream/scene_file.h"
#include "frame/host/api.h"
#include "frame/host/scene.h"
#include "product/bom.h"
#include "tests/support/assembly.h"

namespace qn::bench {
namespace {

Counted<k3::Bom> AddBom(k3::Scene& scene, const wchar_t* name) {
    auto bom = CreateAs<k3::Bom>(k3::kBomKey);
    bom->SetScene(&scene);
    bom->Initialize(Var(name), false);
    return bom;
}

/// A scene with two structures of the same nodes.
struct TwoBoms {
    explicit TwoBoms(const test::AssemblyShape& shape) {
        test::BuildNodes(shape, *scene);
        first = AddBom(*scene, L"first");
        second = AddBom(*scene, L"second");
    }
    void SwitchBackAndForth() {
        second->Activate();
        first->Activate();
    }
    Counted<k3::Scene> scene = Make<k3::Scene>();
    Counted<k3::Bom> first, second;
};

void BM_SwitchBoms(benchmark::State& state) {
    const test::AssemblyShape shape = ShapeOf(state);
    TwoBoms boms(shape);
    for (auto _ : state)
        boms.SwitchBackAndForth();
    CountItems(state, 4 * test::CountOccurrences(shape));
}
BENCHMARK(BM_SwitchBoms)->ArgsProduct({{1000, 10'000, 100'000}, {kShared, kFlat, kDeep}});

void BM_CloneBom(benchmark::State& state) {
    const test::AssemblyShape shape = ShapeOf(state);
    Counted<k3::Scene> scene;
    for (auto _ : state) {
        state.PauseTiming();
        scene = Make<k3::Scene>();
        test::BuildNodes(shape, *scene);
        AddBom(*scene, L"first");
        state.ResumeTiming();
        AddBom(*scene, L"second");
    }
    CountItems(state, test::CountOccurrences(shape));
}
BENCHMARK(BM_CloneBom)->ArgsProduct({{1000, 10'000, 100'000}, {kShared, kFlat, kDeep}});

/// A thousand times there and back; what is stored then must be what was stored before.
void BM_ThousandSwitches(benchmark::State& state) {
    TwoBoms boms(ShapeOf(state));
    boms.SwitchBackAndForth();
    const auto context = api->CreateContext(0, 0);
    const std::string before = SaveSceneToBytes(*boms.scene, *context);
    for (auto _ : state)
        for (int round = 0; round < 1000; ++round)
            boms.SwitchBackAndForth();
    if (SaveSceneToBytes(*boms.scene, *context) != before) state.SkipWithError("the bytes differ");
}
BENCHMARK(BM_ThousandSwitches)->Args({10'000, kShared})->Args({10'000, kFlat})->Iterations(1);

}  // namespace
}  // namespace qn::bench

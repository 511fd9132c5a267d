// What is done to the ids and the hierarchy of a whole scene.

#include "bench/support/shapes.h"
#include "frame/host/scene.h"
#include "services/hierarchy_operation.h"
#include "tests/support/assembly.h"

namespace qn::bench {
namespace {

constexpr const char* kKey = "qn.graph.hierarchyoperation";
constexpr unsigned kAllLayers = 7;
constexpr int kGenerateHierarchy = 15;
const String kPrefix = L"s1:";

/// A scene of the present benchmark's shape, and the object that works on it.
class Subject {
public:
    explicit Subject(benchmark::State& state)
        : shape_(ShapeOf(state)),
          arguments_(Params::Create()),
          operation_(CreateAs<graph::HierarchyOperation>(kKey)) {
        test::BuildNodes(shape_, *scene_);
        arguments_->SetParamObject(0, scene_.Get());
    }

    std::int64_t Occurrences() const { return test::CountOccurrences(shape_); }
    void BuildHierarchy() { operation_->Invoke(kGenerateHierarchy, arguments_.Get(), nullptr); }
    void RemoveHierarchy() { operation_->RemoveHierarchyCache(scene_.Get(), false, false, false, false); }
    void GenerateIds() { operation_->GenerateBsIds(scene_.Get(), kAllLayers, kPrefix, L""); }
    void RemoveIds() { operation_->RemoveIds(scene_.Get(), kAllLayers); }
    void UpdateIds() { operation_->UpdateBsIds(scene_.Get(), L"changed-", kAllLayers, true); }

private:
    test::AssemblyShape shape_;
    Counted<k3::Scene> scene_ = Make<k3::Scene>();
    Counted<Params> arguments_;
    Counted<graph::HierarchyOperation> operation_;
};

/// Times `step`; what `prepare` does before each is not counted.
template <class Prepare, class Step>
void Time(benchmark::State& state, Subject& subject, Prepare prepare, Step step) {
    for (auto _ : state) {
        state.PauseTiming();
        prepare();
        state.ResumeTiming();
        step();
    }
    CountItems(state, subject.Occurrences());
}

void BM_GenerateHierarchyWithBsIds(benchmark::State& state) {
    Subject subject(state);
    Time(
        state, subject, [&] { subject.RemoveHierarchy(); }, [&] { subject.BuildHierarchy(); });
}
BENCHMARK(BM_GenerateHierarchyWithBsIds)->Apply(AllSizes);

void BM_RemoveHierarchyCache(benchmark::State& state) {
    Subject subject(state);
    Time(
        state, subject, [&] { subject.BuildHierarchy(); }, [&] { subject.RemoveHierarchy(); });
}
BENCHMARK(BM_RemoveHierarchyCache)->Apply(AllSizes);

void BM_GenerateBsIds(benchmark::State& state) {
    Subject subject(state);
    subject.BuildHierarchy();
    Time(
        state, subject, [&] { subject.RemoveIds(); }, [&] { subject.GenerateIds(); });
}
BENCHMARK(BM_GenerateBsIds)->Apply(AllSizes);

void BM_UpdateBsIds(benchmark::State& state) {
    Subject subject(state);
    subject.BuildHierarchy();
    const auto prepare = [&] {
        subject.RemoveIds();
        subject.GenerateIds();
    };
    Time(state, subject, prepare, [&] { subject.UpdateIds(); });
}
BENCHMARK(BM_UpdateBsIds)->Apply(AllSizes);

void BM_RemoveIds(benchmark::State& state) {
    Subject subject(state);
    subject.BuildHierarchy();
    Time(
        state, subject, [&] { subject.GenerateIds(); }, [&] { subject.RemoveIds(); });
}
BENCHMARK(BM_RemoveIds)->Apply(AllSizes);

}  // namespace
}  // namespace qn::bench

#include "bench/support/shapes.h"

#include "engine/runtime/modules.h"
#include "frame/entry.h"

#include <cstdio>

namespace qn::bench {
namespace {

constexpr std::int64_t kSmallest = 1'000, kLargest = 1'000'000, kGrowth = 10;
constexpr const char* kNames[] = {"shared", "flat", "deep"};

/// The module is linked in: its classes are known before the first benchmark runs.
const bool g_registered = RegisterEntry(const_cast<bool*>(&g_registered), &K3DLLFunc);

}  // namespace

const char* NameOfShape(const benchmark::State& state) {
    return kNames[state.range(1)];
}

void SetFigures(benchmark::State& state, std::string label, Figures figures) {
    for (const auto& [name, value] : figures) {
        char text[64];
        std::snprintf(text, sizeof text, " %s=%.4g", name, value);
        label += text;
    }
    state.SetLabel(label);
}

test::AssemblyShape ShapeOf(benchmark::State& state) {
    const std::int64_t occurrences = state.range(0);
    state.SetLabel(NameOfShape(state));
    switch (static_cast<Shape>(state.range(1))) {
        // Full levels of ten hold a ninth more than a power of ten.
        case kShared:
            return test::SharedShape(occurrences + occurrences / 9 + 1);
        case kFlat:
            return test::FlatShape(occurrences);
        case kDeep:
            return test::DeepShape(occurrences);
    }
    return {};
}

void AllSizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->ArgNames({"", ""})->Unit(benchmark::kMillisecond);
    for (const std::int64_t shape : {kShared, kFlat, kDeep})
        for (std::int64_t size = kSmallest; size <= kLargest; size *= kGrowth)
            benchmark->Args({size, shape});
}

void CountItems(benchmark::State& state, std::int64_t items) {
    state.SetItemsProcessed(state.iterations() * items);
    state.counters["ns_per_item"] =
        benchmark::Counter(static_cast<double>(state.iterations()) * static_cast<double>(items) / 1e9,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

}  // namespace qn::bench

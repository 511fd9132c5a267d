#pragma once

#include "tests/support/assembly_shape.h"

#include <benchmark/benchmark.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>

namespace qn::bench {

/// Second argument of each benchmark.
enum Shape : std::int64_t { kShared = 0, kFlat = 1, kDeep = 2 };

/// The assembly of the present benchmark: first argument occurrences, second argument shape. Sets the label.
test::AssemblyShape ShapeOf(benchmark::State& state);

/// Occurrences (1,000 to 1,000,000) times shapes.
void AllSizes(benchmark::internal::Benchmark* benchmark);

/// "shared", "flat" or "deep", for the present benchmark.
const char* NameOfShape(const benchmark::State& state);

/// Reports cost for each of `items`. Every benchmark does so and has no other counters, for reports as CSV
/// want the same ones everywhere.
void CountItems(benchmark::State& state, std::int64_t items);

/// Figures of this benchmark alone, as part of its label: "shared load_ms=12.5".
using Figures = std::initializer_list<std::pair<const char*, double>>;
void SetFigures(benchmark::State& state, std::string label, Figures figures);

}  // namespace qn::bench

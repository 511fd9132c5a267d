#pragma once

#include "tests/support/assembly_shape.h"

#include <benchmark/benchmark.h>

#include <cstdint>

namespace qn::bench {

/// Second argument of each benchmark.
enum Shape : std::int64_t { kShared = 0, kFlat = 1, kDeep = 2 };

/// The assembly of the present benchmark: first argument occurrences, second argument shape. Sets the label.
test::AssemblyShape ShapeOf(benchmark::State& state);

/// Occurrences (1,000 to 1,000,000) times shapes.
void AllSizes(benchmark::internal::Benchmark* benchmark);

/// Reports cost for each of `items`.
void CountItems(benchmark::State& state, std::int64_t items);

}  // namespace qn::bench

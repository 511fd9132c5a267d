// Spatial indexes of any kind: one that is read can be written and read again, and is then the same.

#include "exchange/spatial_index.h"

#include <cstdint>
#include <cstdlib>

namespace {

using qn::exchange::ParseSpatialIndex;
using qn::exchange::ReadProblem;
using qn::exchange::SpatialIndex;

void CheckRoundTrip(const SpatialIndex& index) {
    const std::string text = FormatSpatialIndex(index);
    SpatialIndex again;
    ReadProblem problem;
    if (!ParseSpatialIndex(text, again, problem) || FormatSpatialIndex(again) != text) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    SpatialIndex index;
    ReadProblem problem;
    if (ParseSpatialIndex({reinterpret_cast<const char*>(data), size}, index, problem))
        CheckRoundTrip(index);
    else if (!index.entries.empty() || problem.reason.IsEmpty())
        std::abort();
    return 0;
}

#include "importers/gltf/allowance.h"

#include "importers/gltf/gltf_error.h"
#include "importers/gltf/gltf_limits.h"

namespace qn::gltf {

void Allowance::Take(std::uint64_t bytes, const std::string& place) {
    const std::uint64_t most = gltf_limits::kFreeMemory + gltf_limits::kMemoryRatio * stored_;
    taken_ += bytes;
    if (taken_ > most)
        FailAt(place,
               "expected content that takes at most " + std::to_string(most) +
                   " bytes of memory for a file of " + std::to_string(stored_) + " bytes, with this it is " +
                   std::to_string(taken_),
               LoadFailure::kLimit);
}

void Allowance::TakeUnbacked(std::uint64_t elements, const std::string& place) {
    unbacked_ += elements;
    if (unbacked_ > gltf_limits::kMostUnbackedElements)
        FailAt(place,
               "expected at most " + std::to_string(gltf_limits::kMostUnbackedElements) +
                   " elements in the whole file that none of its bytes stand for, with this it is " +
                   std::to_string(unbacked_),
               LoadFailure::kLimit);
}

}  // namespace qn::gltf

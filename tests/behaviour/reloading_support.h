#pragma once

#include "engine/stream/object_file.h"
#include "tests/behaviour/element_support.h"
#include "tests/support/recording_context.h"

namespace qn::test {

/// Chunks of a definition.
namespace ReferenceChunk {
inline constexpr int kProperties = 0x1000, kTarget = 0x1001, kChildren = 0x1002, kSelectors = 0x1003,
                     kInstructions = 0x1004, kObject = 0x1005, kSecondObject = 0x1006;
}  // namespace ReferenceChunk

/// The object as it comes back from a file.
template <class T>
Counted<T> Reloaded(T& object) {
    const auto context = MakeContext();
    return CountedCast<T>(LoadFromBytes(SaveToBytes(object, *context), *context));
}

inline Counted<graph::Reference> WithTarget(const Var& target) {
    auto reference = NewReference();
    reference->SetTarget(target);
    return reference;
}

}  // namespace qn::test

#pragma once

#include "frame/host/result.h"
#include "frame/host/string.h"

#include <cstdint>
#include <vector>

namespace qn {

class Stream;

namespace k3::effectivity_impl {

/// One range as it was given: both ends belong to it, and its end may stand before its start.
template <class Value>
struct Range {
    Value mStart = 0;
    Value mEnd = 0;
    std::vector<String> mStrings;
};

using DateRange = Range<std::int64_t>;  ///< seconds since 1970-01-01 UTC
using LineRange = Range<std::int32_t>;

/// Writes one chunk for each range. kWriteFailed after a write that failed; then the chunks that this call
/// opened are closed. Where a chunk cannot be opened its content is written all the same.
template <class Value>
ResultEnum SaveRanges(const std::vector<Range<Value>>& ranges, Stream* stream);

/// Appends what the present chunk holds and passes over what it does not know. kWriteFailed after a value or
/// a text that ends early: the range stays, with what was read of it.
template <class Value>
ResultEnum LoadRanges(std::vector<Range<Value>>& ranges, Stream* stream);

}  // namespace k3::effectivity_impl
}  // namespace qn

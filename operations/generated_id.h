#pragma once

#include "frame/host/string.h"

namespace qn::graph {

/// What stands around the digits of a generated id.
struct IdFrame {
    String prefix;
    String suffix;
};

/// Prefix, the 32 lower-case hexadecimal digits of a new `Guid`, suffix.
String GenerateId(const IdFrame& frame);

}  // namespace qn::graph

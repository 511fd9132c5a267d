#pragma once

#include "frame/host/selector.h"

namespace qn::graph {

/// Where the values of a copy come from.
enum class CopySource {
    kPath,  ///< a selector over plain instances: inherited values too, but neither metadata nor selector-only
            ///< values
    kSelector,  ///< a stored selector: its own values alone, all of them
};

/// Writes the set values of `source` to the node of `target`. The local transform is put together from those
/// of the definition and of the occurrence. `withMetadata` takes metadata over from a path, too.
void CopyProperties(const Selector& source, Selector::Traverser& target, CopySource kind, bool withMetadata);

}  // namespace qn::graph

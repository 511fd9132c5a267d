#pragma once

#include "frame/host/selector.h"

#include <utility>
#include <vector>

namespace qn::graph {

/// Where the values of a copy come from.
enum class CopySource {
    kPath,  ///< a selector over plain instances: inherited values too, but neither metadata nor selector-only
            ///< values
    kSelector,  ///< a stored selector: its own values alone, all of them
};

/// Values to be written, by rising number.
using PropertyValues = std::vector<std::pair<PropEnum, Var>>;

/// Writes the set values of `source` to the node of `target`. The local transform is put together from those
/// of the definition and of the occurrence. `withMetadata` takes metadata over from a path, too.
void CopyProperties(const Selector& source, Selector::Traverser& target, CopySource kind, bool withMetadata);

/// The same in two steps: what a copy without metadata reads, and writing it.
PropertyValues ReadProperties(const Selector& source, CopySource kind);
void WriteProperties(const Selector& source, const PropertyValues& values, Selector::Traverser& target);

}  // namespace qn::graph

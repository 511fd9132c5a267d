#pragma once

#include "frame/host/class_record.h"
#include "frame/host/var.h"

namespace qn::graph {

/// The selectors that an instance keeps, as they are stored: empty, or a map from running numbers (and, for
/// path attributes, local ids) to `PersistentSelector` values. `Cast` reaches it from the instance, without a
/// table.
class StoredSelectors final : public Var {
public:
    using Var::operator=;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::graph::StoredSelectors");
        return record;
    }
};

}  // namespace qn::graph

#pragma once

#include "frame/host/scene_document.h"
#include "tool/structure.h"

#include <cstdint>
#include <optional>

namespace assembly::tool {

/// What has to be valid: a date, a line number, both or nothing.
struct Validity {
    std::optional<std::int64_t> date;  ///< seconds since 1970-01-01 UTC
    std::optional<std::int32_t> line;

    bool IsAsked() const { return date || line; }
    /// Whether the validity ranges of a node or a use contain date and line. Both ends belong to a range; who
    /// has no ranges of a kind is always valid.
    bool Allows(const qn::Extension& holder) const;
};

/// The structure without the occurrences that are not valid, and all that stands below them. Ranges of a use
/// hold for all its occurrences, those of a node for one: its parents become definitions of their own, which
/// share the `reference`. Costs by definitions, uses and nodes that have ranges. Fails as `CountStructure`.
Structure OnlyValid(const Structure& structure, qn::k3::Scene& scene, const Validity& validity);

}  // namespace assembly::tool

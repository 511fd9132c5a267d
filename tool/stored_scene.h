#pragma once

#include "tool/session.h"

namespace assembly::tool {

/// The scene of a file, damage included. A file that stores no nodes below its generators costs by
/// definitions and uses; where it does store some, the generators read their definitions as a host's load
/// would, for that can point uses at other definitions.
qn::Counted<qn::k3::Scene> LoadAsStored(Session& session, LoadRequest request);

}  // namespace assembly::tool

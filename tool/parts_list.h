#pragma once

#include "tool/parts_options.h"
#include "tool/structure.h"
#include "tool/terminal.h"

namespace assembly::tool {

/// Writes the parts list of a structure. Fails with kUsage for an unknown field, and for groups in a list of
/// several levels; with kLimit if a quantity outgrows 64 bits, or if too many lines are to be sorted or
/// grouped.
void WritePartsList(Output& output, const Structure& structure, const PartsOptions& options,
                    PartsFormat format);

/// "multi", "single", "flat", "occurrences".
const char* NameOf(PartsStructure structure);

}  // namespace assembly::tool

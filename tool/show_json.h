#pragma once

#include "tool/show_options.h"
#include "tool/terminal.h"

namespace assembly::tool {

/// One JSON object, written as it is walked:
///   definitions  [{name, kind "part"|"assembly", uses, occurrences, id?, file?, file_state?}], in the order
///   of
///                first meeting; `file` is named by the definition, its state "not read", "read" or "missing"
///   instances    [{name, parent, definition, matrix (16 numbers, row vectors, mm), id?}], parent and
///                definition are indexes
///   occurrences  [{level, parent, definition, name?, origin_mm}], parents first; `parent` is the index of
///   the
///                parent in this list, null for a root; left out with `definitions`
void WriteShowJson(Output& output, const Structure& structure, const ShowOptions& options);

}  // namespace assembly::tool

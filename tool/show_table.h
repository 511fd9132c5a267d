#pragma once

#include "tool/show_options.h"
#include "tool/terminal.h"

namespace assembly::tool {

void WriteOccurrenceTree(Output& output, const Structure& structure, const ShowOptions& options);
void WriteDefinitionTable(Output& output, const Structure& structure, const ShowOptions& options);

}  // namespace assembly::tool

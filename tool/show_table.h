#pragma once

#include "tool/show_options.h"
#include "tool/terminal.h"

namespace assembly::tool {

/// A line for each occurrence down to the wanted level, with guides that show what stands below what.
void WriteOccurrenceTree(Output& output, const Structure& structure, const ShowOptions& options);
/// A line for each definition: its name, what it is, how many uses it has and how often it is used and shown.
void WriteDefinitionTable(Output& output, const Structure& structure, const ShowOptions& options);

}  // namespace assembly::tool

#pragma once

#include "tool/operation_description.h"
#include "tool/terminal.h"

namespace assembly::tool {

/// A line for each operation, or everything about it if there is only one.
void WriteOperationTable(Output& output, const OperationList& list);
void WriteOperationJson(Output& output, const OperationList& list);
/// As the module describes them.
void WriteOperationXml(Output& output, const OperationList& list);
/// A JSON Schema document (draft 2020-12) of calls, with a definition for the arguments of each operation.
void WriteOperationSchema(Output& output, const OperationList& list);

/// What `run NAME --help` prints.
void WriteOperationHelp(Output& output, const Operation& operation);

}  // namespace assembly::tool

#pragma once

#include "tool/parts_cells.h"
#include "tool/terminal.h"

#include <memory>
#include <vector>

namespace assembly::tool {

/// Writes lines of a parts list, one after the other. Only the cells of the given fields are written; lines
/// may have more.
class PartsWriter {
public:
    virtual ~PartsWriter() = default;
    /// Whether all lines have to pass `Measure` before the first is written.
    virtual bool Measures() const { return false; }
    virtual void Measure(const PartsLine&) {}
    virtual void Begin() = 0;
    virtual void Write(const PartsLine& line) = 0;
    virtual void End() {}
};

/// Both borrow the output. `indented` moves names to the right by their level.
std::unique_ptr<PartsWriter> MakePartsTableWriter(Output& output, std::vector<PartsField> fields,
                                                  bool indented);
std::unique_ptr<PartsWriter> MakePartsMarkdownWriter(Output& output, std::vector<PartsField> fields);
std::unique_ptr<PartsWriter> MakePartsCsvWriter(Output& output, std::vector<PartsField> fields);
/// {"structure": NAME, "rows": [{FIELD: VALUE}]}; a value that is missing is null.
std::unique_ptr<PartsWriter> MakePartsJsonWriter(Output& output, std::vector<PartsField> fields,
                                                 std::string structure);

}  // namespace assembly::tool

#include "tool/parts_list.h"

#include "tool/cancel.h"
#include "tool/failure.h"
#include "tool/parts_lines.h"
#include "tool/parts_writer.h"

#include <algorithm>
#include <optional>

namespace assembly::tool {
namespace {

/// Lines that decide how wide columns are; a list may have billions.
constexpr std::size_t kMostMeasuredLines = 1'000'000;

/// The fields of a list: those that are written, then those that only group or sort.
struct Columns {
    std::vector<PartsField> all;
    std::size_t shown = 0;
    std::vector<std::size_t> groupBy;
    std::optional<std::size_t> sort;

    std::vector<PartsField> Shown() const {
        return {all.begin(), all.begin() + static_cast<std::ptrdiff_t>(shown)};
    }
    std::size_t ColumnOf(const PartsField& field) {
        const auto found = std::find_if(all.begin(), all.end(),
                                        [&](const PartsField& known) { return known.name == field.name; });
        if (found != all.end()) return static_cast<std::size_t>(found - all.begin());
        all.push_back(field);
        return all.size() - 1;
    }
};

void RefuseDoubles(const std::vector<PartsField>& fields) {
    for (std::size_t i = 0; i < fields.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            if (fields[i].name == fields[j].name)
                throw Failure(ExitCode::kUsage, "the field \"" + fields[i].name + "\" is named twice");
}

Columns ColumnsOf(const PartsOptions& options, const Structure& structure) {
    Columns columns;
    columns.all = ResolvePartsFields(
        options.fields.empty() ? DefaultPartsFields(options.structure) : options.fields, structure);
    RefuseDoubles(columns.all);
    columns.shown = columns.all.size();
    for (const PartsField& field : ResolvePartsFields(options.groupBy, structure))
        columns.groupBy.push_back(columns.ColumnOf(field));
    if (!options.sortField.empty())
        columns.sort = columns.ColumnOf(ResolvePartsFields({options.sortField}, structure).front());
    return columns;
}

std::unique_ptr<PartsWriter> MakeWriter(Output& output, std::vector<PartsField> fields,
                                        PartsStructure structure, PartsFormat format) {
    const bool hasLevels = structure == PartsStructure::kMulti || structure == PartsStructure::kOccurrences;
    switch (format) {
        case PartsFormat::kTable:
            return MakePartsTableWriter(output, std::move(fields), hasLevels);
        case PartsFormat::kCsv:
            return MakePartsCsvWriter(output, std::move(fields));
        case PartsFormat::kJson:
            return MakePartsJsonWriter(output, std::move(fields), NameOf(structure));
        case PartsFormat::kMarkdown:
            return MakePartsMarkdownWriter(output, std::move(fields));
    }
    return nullptr;
}

/// Sends lines to the writer; `run(visit)` goes over all of them, as often as it is called.
template <class Run>
void Write(Output& output, PartsWriter& writer, const Run& run) {
    std::size_t measured = 0;
    if (writer.Measures())
        run([&](const PartsLine& line) {
            ThrowIfCancelled();
            writer.Measure(line);
            return ++measured < kMostMeasuredLines;
        });
    writer.Begin();
    run([&](const PartsLine& line) {
        writer.Write(line);
        return output.IsOpen();
    });
    writer.End();
}

void SortSiblings(PartsTable& table, const Columns& columns, const Structure& structure, bool descending) {
    const PartsField& field = columns.all[*columns.sort];
    table.SortSiblings([&](const PartsRow& left, const PartsRow& right) {
        const PartsCell first = CellOf(field, descending ? right : left, structure);
        return first < CellOf(field, descending ? left : right, structure);
    });
}

void ExpectWithinLimit(std::size_t lines, const PartsOptions& options) {
    if (lines <= options.mostKeptLines) return;
    throw Failure(ExitCode::kLimit, "the list has more than " + std::to_string(options.mostKeptLines) +
                                        " lines to sort or group; choose --level or another --structure");
}

/// All lines, grouped and sorted.
std::vector<PartsLine> Collect(PartsTable& table, const Columns& columns, const Structure& structure,
                               const PartsOptions& options) {
    std::vector<PartsLine> lines;
    LineGroups groups(columns.all, columns.groupBy);
    table.Run([&](const PartsRow& row) {
        ThrowIfCancelled();
        PartsLine line = LineOf(columns.all, row, structure);
        columns.groupBy.empty() ? lines.push_back(std::move(line)) : groups.Add(std::move(line));
        ExpectWithinLimit(lines.size() + groups.Count(), options);
        return true;
    });
    if (!columns.groupBy.empty()) lines = groups.Take();
    if (columns.sort) SortLines(lines, *columns.sort, options.descending);
    return lines;
}

}  // namespace

const char* NameOf(PartsStructure structure) {
    switch (structure) {
        case PartsStructure::kMulti:
            return "multi";
        case PartsStructure::kSingle:
            return "single";
        case PartsStructure::kFlat:
            return "flat";
        case PartsStructure::kOccurrences:
            return "occurrences";
    }
    return "";
}

void WritePartsList(Output& output, const Structure& structure, const PartsOptions& options,
                    PartsFormat format) {
    const bool isMulti = options.structure == PartsStructure::kMulti;
    if (isMulti && !options.groupBy.empty())
        throw Failure(ExitCode::kUsage, "lines of several levels cannot be grouped; use another --structure");
    const Columns columns = ColumnsOf(options, structure);
    PartsTable table(structure, options);
    const auto writer = MakeWriter(output, columns.Shown(), options.structure, format);
    if (isMulti && columns.sort) SortSiblings(table, columns, structure, options.descending);
    if (!isMulti && (columns.sort || !columns.groupBy.empty())) {
        const std::vector<PartsLine> lines = Collect(table, columns, structure, options);
        Write(output, *writer, [&](auto&& visit) {
            for (const PartsLine& line : lines)
                if (!visit(line)) return;
        });
        return;
    }
    Write(output, *writer, [&](auto&& visit) {
        table.Run([&](const PartsRow& row) { return visit(LineOf(columns.all, row, structure)); });
    });
}

}  // namespace assembly::tool

#include "tool/bom_table.h"

#include "tool/column_widths.h"
#include "tool/element_names.h"
#include "tool/failure.h"
#include "tool/nearest.h"

namespace assembly::tool {
namespace {

using qn::k3::Bom;

/// As the structure would list them now: for the current one the scene's own nodes count.
BomRow RowOf(Bom& bom, qn::k3::Scene& scene) {
    BomRow row;
    row.bom = &bom;
    row.name = bom.GetName().ToUtf8();
    row.isCurrent = qn::k3::BomHelper(&scene).GetCurrentBom() == &bom;
    const auto layers = bom.GetLayers();
    if (row.isCurrent) {
        row.topNodes = static_cast<std::size_t>(scene.GetChildCount());
        row.layers = static_cast<std::size_t>(scene.GetLayers()->GetCount());
    } else {
        row.topNodes = static_cast<std::size_t>(bom.GetNodes().size());
        row.layers = layers ? static_cast<std::size_t>(layers->GetCount()) : 0;
    }
    return row;
}

std::string NamesOf(const std::vector<BomRow>& boms) {
    std::string names;
    for (const BomRow& row : boms)
        names += (names.empty() ? "" : ", ") + ("\"" + Printable(row.name) + "\"");
    return names;
}

}  // namespace

std::vector<BomRow> BomsOf(qn::k3::Scene& scene) {
    std::vector<BomRow> rows;
    const qn::VarArray* boms = qn::k3::BomHelper(&scene).GetBoms();
    for (int i = 0; boms && i < boms->GetCount(); ++i)
        if (auto* bom = qn::Cast<Bom>(boms->Get(i).ToInterface())) rows.push_back(RowOf(*bom, scene));
    return rows;
}

Bom& FindBom(const std::vector<BomRow>& boms, const std::string& name, const std::string& file) {
    Bom* found = nullptr;
    std::vector<std::string> names;
    for (const BomRow& row : boms) {
        names.push_back(row.name);
        if (row.name != name) continue;
        if (found)
            throw Failure(ExitCode::kUsage, file + ": more than one structure is called \"" + name +
                                                "\"; use its number, as \"#2\"");
        found = row.bom;
    }
    for (std::size_t i = 0; !found && i < boms.size(); ++i)
        if (name == "#" + std::to_string(i + 1)) found = boms[i].bom;
    if (found) return *found;
    const std::string known = boms.empty() ? "it has none" : "it has " + NamesOf(boms);
    throw Failure(ExitCode::kUsage, file + ": no structure is called \"" + name + "\"" +
                                        Suggestion(name, names) + "; " + known);
}

void WriteBomTable(Output& output, const std::vector<BomRow>& boms) {
    if (boms.empty()) return;
    std::vector<std::vector<std::string>> rows{{" ", "name", "top nodes", "layers"}};
    for (const BomRow& row : boms)
        rows.push_back({row.isCurrent ? "*" : " ", row.name.empty() ? kUnnamed : Printable(row.name),
                        std::to_string(row.topNodes), std::to_string(row.layers)});
    ColumnWidths widths(rows[0].size());
    for (std::size_t r = 0; r < rows.size(); ++r)
        for (std::size_t column = 0; column < rows[r].size(); ++column)
            r == 0 ? widths.AddTitle(column, rows[r][column])
                   : widths.Add(column, rows[r][column], column >= 2);
    for (const auto& row : rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column)
            line += (column == 0 ? "" : column == 1 ? " " : "  ") + widths.Padded(column, row[column]);
        output.Line(line);
    }
}

void WriteBomJson(Output& output, const std::vector<BomRow>& boms) {
    output.Write("{\"boms\": [");
    const char* separator = "\n";
    int number = 0;
    for (const BomRow& row : boms) {
        output.Write(separator);
        output.Write("  {\"number\": " + std::to_string(++number) + ", \"name\": " + Quoted(row.name) +
                     ", \"current\": " + (row.isCurrent ? "true" : "false") + ", \"top_nodes\": " +
                     std::to_string(row.topNodes) + ", \"layers\": " + std::to_string(row.layers) + "}");
        separator = ",\n";
    }
    output.Line(boms.empty() ? "]}" : "\n]}");
}

}  // namespace assembly::tool

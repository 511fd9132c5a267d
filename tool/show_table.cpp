#include "tool/show_table.h"

#include "tool/element_names.h"

#include <algorithm>
#include <vector>

namespace assembly::tool {
namespace {

constexpr std::uint32_t kDrawnLevels =
    64;  // deeper levels are numbered: their guides would outgrow the names

std::string NameOf(const Definition& definition) {
    return definition.name.empty() ? kUnnamed : Printable(definition.name);
}

std::string IdText(const qn::graph::HierarchyElement* element) {
    const std::string id = element ? PersistentIdOf(*element) : std::string();
    return id.empty() ? id : " [" + Printable(id) + "]";
}

std::string UseText(const Definition& definition) {
    return definition.usedBy > 1 ? " (" + std::to_string(definition.usedBy) + " uses)" : std::string();
}

/// The file that would have to be read for what is below.
std::string FileText(const Definition& definition) {
    switch (definition.fileState) {
        case FileState::kNone:
        case FileState::kRead:
            return std::string();
        case FileState::kNotRead:
            return " → " + Printable(definition.file);
        case FileState::kMissing:
            return " → " + Printable(definition.file) + " (missing)";
    }
    return std::string();
}

std::string Label(const Occurrence& occurrence, const ShowOptions& options, const Output& output) {
    const Definition& definition = *occurrence.definition;
    std::string text = NameOf(definition);
    if (!occurrence.name.empty() && occurrence.name != definition.name)
        text += " \"" + Printable(occurrence.name) + "\"";
    std::string notes = UseText(definition) + FileText(definition);
    if (options.ids) notes += IdText(definition.reference) + IdText(occurrence.use->instance);
    if (occurrence.level == options.depth && definition.expanded > 1)
        notes += " + " + std::to_string(definition.expanded - 1) + " below";
    return notes.empty() ? text : text + output.Faint(notes);
}

/// The lines in front of an occurrence that lead the eye up the tree.
class Guides {
public:
    const std::string& Before(const Occurrence& occurrence, const OccurrenceWalk& walk) {
        const std::uint32_t level = std::min(occurrence.level, kDrawnLevels);
        line_.clear();
        if (level > 1) {
            ends_.resize(level - 1);
            text_.resize(level > 2 ? ends_[level - 3] : 0);
            if (level > 2) text_ += walk.IsLastAt(level - 1) ? "   " : "│  ";
            ends_[level - 2] = text_.size();
            line_ = text_ + (occurrence.lastSibling ? "└─ " : "├─ ");
        }
        if (occurrence.level > kDrawnLevels)
            line_ = text_ + "· level " + std::to_string(occurrence.level) + ": ";
        return line_;
    }

private:
    std::string text_, line_;
    std::vector<std::size_t> ends_;  // length of `text_` for each level
};

struct Row {
    std::string name, kind, children, uses, occurrences, id;
};

}  // namespace

void WriteOccurrenceTree(Output& output, const Structure& structure, const ShowOptions& options) {
    OccurrenceWalk walk(structure, options.depth);
    Guides guides;
    walk.Run([&](const Occurrence& occurrence) {
        output.Write(guides.Before(occurrence, walk));
        output.Line(Label(occurrence, options, output));
        return output.IsOpen();
    });
}

void WriteDefinitionTable(Output& output, const Structure& structure, const ShowOptions& options) {
    std::vector<Row> rows{{"definition", "kind", "children", "uses", "occurrences", "id"}};
    for (const Definition& definition : structure.definitions)
        rows.push_back({NameOf(definition), definition.useCount ? "assembly" : "part",
                        std::to_string(definition.useCount), std::to_string(definition.usedBy),
                        std::to_string(definition.occurrences),
                        options.ids ? Printable(PersistentIdOf(*definition.reference)) : ""});
    std::size_t width = 0;
    for (const Row& row : rows)
        width = std::max(width, Width(row.name));
    const auto right = [](const std::string& text, std::size_t columns) {
        return std::string(columns > text.size() ? columns - text.size() : 0, ' ') + text;
    };
    for (const Row& row : rows) {
        std::string line = row.name + std::string(width - Width(row.name), ' ');
        line += "  " + row.kind + std::string(8 - row.kind.size(), ' ');
        line += right(row.children, 10) + right(row.uses, 8) + right(row.occurrences, 13);
        if (options.ids) line += "  " + row.id;
        output.Line(line);
    }
}

}  // namespace assembly::tool

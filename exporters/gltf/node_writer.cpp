#include "exporters/gltf/node_writer.h"

#include "exporters/gltf/json_text.h"

namespace qn::gltf_export {
namespace {

constexpr double kMetresPerMillimetre = 0.001;
constexpr double kHalfRoot = 0.70710678118654752;
/// A quarter turn about x, which takes z to y.
constexpr Quaternion kZToY{-kHalfRoot, 0, 0, kHalfRoot};
constexpr std::uint64_t kNodesPerReport = 1 << 14;

template <std::size_t kCount>
void AppendMember(std::string& out, Comma& comma, const char* key,
                  const std::array<double, kCount>& numbers) {
    comma.Key(out, key);
    AppendNumbers(out, numbers.data(), kCount);
}

constexpr Quaternion kNoTurn{0, 0, 0, 1};

}  // namespace

NodeWriter::NodeWriter(const ExportModel& model, Sink& sink, Context& context)
    : model_(model), sink_(sink), context_(context), overrides_(model), heads_(model.uses.size()) {}

void NodeWriter::Write() {
    sink_.Text() += '[';
    WriteFrame();
    Descend(0, model_.rootCount);
    while (!levels_.empty()) {
        if (levels_.back().next < levels_.back().useCount) {
            Enter(levels_.back());
            continue;
        }
        levels_.pop_back();
        path_.pop_back();
    }
    sink_.Text() += ']';
    sink_.Pass();
}

void NodeWriter::WriteFrame() {
    std::string& out = sink_.Text();
    Comma comma;
    out += '{';
    comma.Key(out, "name");
    AppendText(out, "frame");
    if (!model_.isUpY) AppendMember(out, comma, "rotation", kZToY);
    AppendMember(out, comma, "scale",
                 std::array{kMetresPerMillimetre, kMetresPerMillimetre, kMetresPerMillimetre});
    index_ = 1;
    if (model_.rootCount > 0) out += ',';
    WriteChildren(0, model_.rootCount, index_);
    out += '}';
}

std::uint64_t NodeWriter::NodesOf(std::uint32_t use) const {
    const UseRow& row = model_.uses[use];
    return model_.definitions[row.definition].nodes + (row.isTwoNodes ? 1 : 0);
}

void NodeWriter::Enter(Level& level) {
    if (index_ % kNodesPerReport == 0 &&
        !context_.ReportProgress(static_cast<double>(index_) / static_cast<double>(model_.nodes + 1)))
        throw ExportFailure(Outcome::kCancelled, "cancelled");
    const std::uint32_t use = level.firstUse + level.next++;
    path_.back() = use;
    WriteNode(use, overrides_.Find(path_));
    sink_.Pass();
    const DefinitionRow& definition = model_.definitions[model_.uses[use].definition];
    if (definition.useCount > 0) Descend(definition.firstUse, definition.useCount);
}

void NodeWriter::Descend(std::uint32_t firstUse, std::uint32_t useCount) {
    levels_.push_back({firstUse, useCount});
    path_.push_back(kNone);
}

void NodeWriter::WriteNode(std::uint32_t use, const OverridesOfOne& overrides) {
    const auto [name, place] = overrides;
    const UseRow& row = model_.uses[use];
    const DefinitionRow& definition = model_.definitions[row.definition];
    const Place& shown = place ? place->place : row.place;
    std::string& out = sink_.Text();
    out += ",\n";
    if (name || place)
        out += MakeHead(row, name ? name->name : row.name, shown);
    else
        out += HeadOf(use);
    ++index_;
    if (row.isTwoNodes) {
        out += ",\"children\":[", AppendIndex(out, index_), out += "]},\n{";
        if (shown.form == PlaceForm::kTwo) {
            const Quaternion inner = PartsOf(shown).inner;
            if (inner != kNoTurn) {
                Comma comma;
                AppendMember(out, comma, "rotation", inner);
                out += ',';
            }
        }
        out += "\"extras\":{\"assembly\":{\"inner\":true}}";
        ++index_;
    }
    WriteContent(definition, index_);
    out += '}';
}

void NodeWriter::WriteContent(const DefinitionRow& definition, std::uint64_t firstChild) {
    std::string& out = sink_.Text();
    if (definition.mesh != kNone) out += ",\"mesh\":", AppendIndex(out, definition.mesh);
    if (definition.useCount == 0) return;
    out += ',';
    WriteChildren(definition.firstUse, definition.useCount, firstChild);
}

void NodeWriter::WriteChildren(std::uint32_t firstUse, std::uint32_t useCount, std::uint64_t firstNode) {
    if (useCount == 0) return;
    std::string& out = sink_.Text();
    out += "\"children\":[";
    for (std::uint32_t i = 0; i < useCount; ++i) {
        if (i > 0) out += ',';
        AppendIndex(out, firstNode);
        firstNode += NodesOf(firstUse + i);
    }
    out += ']';
}

const std::string& NodeWriter::HeadOf(std::uint32_t use) {
    const UseRow& row = model_.uses[use];
    const bool isRepeated = row.parent != kNone && model_.definitions[row.parent].occurrences > 1;
    std::string& head = isRepeated ? heads_[use] : scratch_;
    if (!isRepeated || head.empty()) head = MakeHead(row, row.name, row.place);
    return head;
}

std::string NodeWriter::MakeHead(const UseRow& use, const std::string& name, const Place& place) const {
    std::string out = "{";
    Comma comma;
    const std::string& shownName = name.empty() ? model_.definitions[use.definition].name : name;
    if (!shownName.empty()) {
        comma.Key(out, "name");
        AppendText(out, shownName);
    }
    if (place.form == PlaceForm::kMatrix) {
        comma.Key(out, "matrix");
        AppendMatrix(out, place.matrix);
    } else if (place.form != PlaceForm::kNothing) {
        const PlaceParts parts = PartsOf(place);
        AppendMember(out, comma, "translation", parts.translation);
        AppendMember(out, comma, "rotation", parts.rotation);
        AppendMember(out, comma, "scale", parts.scale);
    }
    comma.Key(out, "extras");
    out += "{\"assembly\":{\"definition\":";
    AppendIndex(out, use.definition);
    const auto number = static_cast<std::uint64_t>(&use - model_.uses.data());
    out += ",\"use\":";
    AppendIndex(out, number);
    out += "}}";
    return out;
}

}  // namespace qn::gltf_export

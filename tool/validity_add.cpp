#include "tool/validity_add.h"

#include "frame/host/api.h"
#include "frame/host/parameter_ids.h"
#include "tool/dates.h"
#include "tool/failure.h"
#include "tool/generate.h"
#include "tool/occurrence_path.h"

#include <charconv>
#include <limits>

namespace assembly::tool {
namespace {

using qn::graph::Instance;
using qn::k3::Effectivity;
using qn::k3::Node;
using Kind = ValidityRange::Kind;

// The ends of a range of dates that is open.
constexpr const char* kFirstDate = "0000-01-01";
constexpr const char* kLastDate = "9999-12-31T23:59:59Z";
constexpr std::int64_t kLastSecondOfDay = 86'400 - 1;

[[noreturn]] void FailOn(const std::string& text, const char* what) {
    throw Failure(ExitCode::kUsage, "\"" + text + "\" is no " + what);
}

std::int64_t DateOf(const std::string& text) {
    const auto date = ParseDate(text);
    if (!date) FailOn(text, "date, as 2026-03-31 or 2026-03-31T08:30:00Z");
    return *date;
}

/// A day as the end of a range belongs to it whole.
std::int64_t EndOf(const std::string& text) {
    const bool isDay = text.find('T') == std::string::npos;
    return DateOf(text) + (isDay ? kLastSecondOfDay : 0);
}

std::int32_t LineOf(std::string_view text, const std::string& whole) {
    std::int32_t line = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), line);
    if (error != std::errc() || end != text.data() + text.size() || line < 0)
        FailOn(whole, "range of lines, as 12-40 or 12 (0 to 2147483647)");
    return line;
}

ValidityRange LinesOf(const std::string& text) {
    const std::size_t dash = text.find('-');
    ValidityRange range;
    range.kind = Kind::kLine;
    range.from = LineOf(std::string_view(text).substr(0, dash), text);
    range.to = dash == std::string::npos ? range.from : LineOf(std::string_view(text).substr(dash + 1), text);
    return range;
}

/// Other programs may write such ranges, and `lint` finds them; here it can only be a slip.
void ExpectNotInverted(const ValidityRange& range) {
    if (range.to >= range.from) return;
    throw Failure(ExitCode::kUsage, std::string("the ") + WordOf(range.kind) + " range " +
                                        EndText(range.kind, range.from) + " to " +
                                        EndText(range.kind, range.to) +
                                        " ends before it starts: nothing would be valid in it");
}

Node* ChildThatShows(const Node& parent, const Instance* instance) {
    for (Node* child = parent.GetFirstChild(); child; child = child->GetNextSibling())
        if (instance && child->GetParamObject(qn::Param::kInstance) == instance) return child;
    return nullptr;
}

/// The node along the path; null if the nodes say something else than the definitions.
Node* NodeOf(const Structure& structure, const std::vector<const Use*>& path) {
    const auto root = static_cast<std::size_t>(path.front() - structure.roots.data());
    const Top& top = structure.tops[root];
    auto* node = const_cast<Node*>(top.node);
    if (node && top.inContainer) node = ChildThatShows(*node, path.front()->instance);
    for (std::size_t i = 1; node && i < path.size(); ++i)
        node = ChildThatShows(*node, path[i]->instance);
    return node;
}

Node& NodeToLimit(qn::k3::Scene& scene, qn::Context& context, const Structure& structure,
                  const std::vector<const Use*>& path, const std::string& text) {
    if (path.size() > 1 || structure.tops[0].inContainer) GenerateNodes(scene, context);
    if (Node* node = NodeOf(structure, path)) return *node;
    throw Failure(ExitCode::kUnreadable, "no node of the scene shows \"" + text + "\"");
}

std::uint64_t OccurrencesOf(const Structure& structure, const Use& use) {
    for (const Definition& definition : structure.definitions) {
        const Use* first = structure.uses.data() + definition.firstUse;
        if (&use >= first && &use < first + definition.useCount) return definition.occurrences;
    }
    return 1;
}

void Append(qn::Extension& holder, const std::vector<ValidityRange>& ranges) {
    qn::Counted<Effectivity> object(EffectivityOf(holder));
    if (!object) {
        object = qn::CreateAs<Effectivity>(qn::k3::kEffectivityKey);
        if (!object) throw Failure(ExitCode::kDefect, "the module keeps no validity ranges");
        holder.SetParamObject(qn::Param::kEffectivity, object.Get());
    }
    for (const ValidityRange& range : ranges) {
        const bool isDate = range.kind == Kind::kDate;
        const unsigned index = isDate ? object->GetDateCount() : object->GetLineCount();
        isDate ? object->AddDateRange(range.from, range.to)
               : object->AddLineRange(static_cast<std::int32_t>(range.from),
                                      static_cast<std::int32_t>(range.to));
        for (const std::string& text : range.texts) {
            const qn::String wide = qn::String::FromUtf8(text);
            isDate ? object->AddDateString(index, wide) : object->AddLineString(index, wide);
        }
    }
}

}  // namespace

std::vector<ValidityRange> RangesIn(const RangesToAdd& request) {
    std::vector<ValidityRange> ranges;
    if (!request.from.empty() || !request.to.empty()) {
        ValidityRange range;
        range.from = DateOf(request.from.empty() ? kFirstDate : request.from);
        range.to = EndOf(request.to.empty() ? kLastDate : request.to);
        ranges.push_back(range);
    }
    if (!request.lines.empty()) ranges.push_back(LinesOf(request.lines));
    if (ranges.empty()) throw Failure(ExitCode::kUsage, "say what is valid: --from, --to or --lines");
    for (ValidityRange& range : ranges) {
        ExpectNotInverted(range);
        range.texts = request.texts;
    }
    return ranges;
}

AddedRanges AddRanges(qn::k3::Scene& scene, qn::Context& context, const RangesToAdd& request) {
    AddedRanges added;
    added.ranges = RangesIn(request);
    const Structure structure = ReadStructure(scene, context);
    OccurrencePaths paths(structure);
    const std::vector<const Use*> path = paths.Find(request.occurrence);
    added.path = paths.PathOf(path);
    const Use& use = *path.back();
    const bool isTop = path.size() == 1;
    if (isTop || request.onlyHere || !use.instance) {
        Append(NodeToLimit(scene, context, structure, path, added.path), added.ranges);
    } else {
        added.isUse = true;
        added.occurrences = OccurrencesOf(structure, use);
        Append(*use.instance, added.ranges);
    }
    return added;
}

}  // namespace assembly::tool

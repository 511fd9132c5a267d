#include "exchange/spatial_index.h"

#include "exchange/content_boxes.h"
#include "exchange/limits.h"
#include "graph/instance.h"
#include "graph/node_content.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace qn::exchange {
namespace {

constexpr std::string_view kHeader = "assembly-spatial-index 1";
constexpr std::string_view kMargin = "margin ";
constexpr char kSeparator = '\t';
constexpr std::size_t kNumbers = 6;

std::string_view TakeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
    return line;
}

std::string_view TakeField(std::string_view& line) {
    const std::size_t end = std::min(line.find(kSeparator), line.size());
    const std::string_view field = line.substr(0, end);
    line.remove_prefix(std::min(end + 1, line.size()));
    return field;
}

bool ParseNumber(std::string_view text, double& out) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), out);
    return error == std::errc() && end == text.data() + text.size() && std::isfinite(out);
}

bool IsTooLong(const String& text) {
    return static_cast<std::size_t>(text.Length()) > exchange_limits::kLongestId;
}

/// Null, or what is wrong with the line.
const wchar_t* ParseEntry(std::string_view line, IndexEntry& entry) {
    std::array<double, kNumbers> numbers{};
    for (double& number : numbers)
        if (!ParseNumber(TakeField(line), number)) return L"six numbers were expected";
    entry.box.AddPoint({numbers[0], numbers[1], numbers[2]});
    const bool isOrdered = numbers[3] >= numbers[0] && numbers[4] >= numbers[1] && numbers[5] >= numbers[2];
    if (!isOrdered) return L"the box ends before it begins";
    entry.box.AddPoint({numbers[3], numbers[4], numbers[5]});
    entry.id = String::FromUtf8(TakeField(line));
    entry.path = String::FromUtf8(TakeField(line));
    for (const String& text : {entry.id, entry.path})
        if (text.NonEmpty() && !IsStorableId(text) && !IsTooLong(text)) return L"control characters in an id";
    return entry.id.IsEmpty() && entry.path.IsEmpty() ? L"an id or a path was expected" : nullptr;
}

/// Null, or what is wrong with the line.
const wchar_t* TakeLineInto(SpatialIndex& index, std::string_view line) {
    if (line.empty() || line.front() == '#') return nullptr;
    if (line.substr(0, kMargin.size()) == kMargin) {
        const bool isNumber = ParseNumber(line.substr(kMargin.size()), index.margin) && index.margin >= 0;
        return isNumber ? nullptr : L"the margin is no number from 0 on";
    }
    IndexEntry entry;
    if (const wchar_t* wrong = ParseEntry(line, entry)) return wrong;
    index.entries.push_back(std::move(entry));
    return nullptr;
}

String AtLine(std::size_t number, const wchar_t* what) {
    String text;
    text.Format(L"line %lld: %s", static_cast<long long>(number), what);
    return text;
}

String IdText(const Var& value) {
    const String text = value.ToText();
    return IsStorableId(text) ? text : String();
}

void AppendNumber(std::string& text, double value) {
    char digits[32];
    const double plain = value == 0 ? 0 : value;
    text.append(digits, std::to_chars(digits, digits + sizeof digits, plain).ptr);
}

}  // namespace

bool ParseSpatialIndex(std::string_view text, SpatialIndex& index, ReadProblem& problem) {
    index = {};
    SpatialIndex read;
    std::size_t number = 1;
    if (TakeLine(text) != kHeader) {
        problem = {AtLine(number, L"the first line of a spatial index was expected"), false};
        return false;
    }
    while (!text.empty()) {
        ++number;
        if (const wchar_t* wrong = TakeLineInto(read, TakeLine(text))) {
            problem = {AtLine(number, wrong), false};
            return false;
        }
        const bool isTooMuch = read.entries.size() > exchange_limits::kMostEntries;
        const IndexEntry* last = read.entries.empty() ? nullptr : &read.entries.back();
        if (isTooMuch || (last && (IsTooLong(last->id) || IsTooLong(last->path)))) {
            problem = {AtLine(number, isTooMuch ? L"too many entries" : L"an id is too long"), true};
            return false;
        }
    }
    index = std::move(read);
    return true;
}

std::string FormatSpatialIndex(const SpatialIndex& index) {
    std::string text(kHeader);
    text += "\n# least x y z, greatest x y z, id, path; millimetres, separated by tabs\n";
    if (index.margin > 0) {
        text += kMargin;
        AppendNumber(text, index.margin);
        text += '\n';
    }
    for (const IndexEntry& entry : index.entries) {
        for (const auto& corner : {entry.box.min, entry.box.max})
            for (const double value : corner) {
                AppendNumber(text, value);
                text += kSeparator;
            }
        text += entry.id.ToUtf8() + kSeparator + entry.path.ToUtf8() + '\n';
    }
    return text;
}

SpatialIndex IndexOf(k3::Node& top) {
    SpatialIndex index;
    ForEachContentBox(top, [&](k3::Node& node, const Box& box) {
        IndexEntry entry;
        entry.box = box;
        if (const auto* instance = graph::CarriedInstance(node))
            entry.id = IdText(instance->GetProperty(graph::Prop::kBsId, 0));
        entry.path = IdText(node.GetParamVar(Param::kBsId));
        if (entry.id.NonEmpty() || entry.path.NonEmpty()) index.entries.push_back(std::move(entry));
    });
    return index;
}

}  // namespace qn::exchange

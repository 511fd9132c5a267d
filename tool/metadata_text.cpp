#include "tool/metadata_text.h"

#include "frame/host/collections.h"
#include "tool/terminal.h"

#include <cmath>
#include <unordered_set>
#include <utility>
#include <vector>

namespace assembly::tool {
namespace {

using qn::Var;
using qn::VarMap;

constexpr const wchar_t* kValueKey = L"Value";
constexpr const wchar_t* kUnitKey = L"Unit";

Var MetadataOf(const qn::graph::HierarchyElement& element) {
    return element.GetProperty(qn::graph::Prop::kMetadata, 0);
}

bool IsNumber(const Var& value) {
    return value.GetTag() >= qn::VarTag::kInt && value.GetTag() <= qn::VarTag::kDouble;
}

bool IsInteger(const Var& value) {
    return value.GetTag() == qn::VarTag::kInt || value.GetTag() == qn::VarTag::kInt64;
}

/// Whether the map stands for one value, which may have a unit.
bool IsMeasure(const Var& value) {
    return value.IsMap() && value.Lookup(kValueKey) && value.size() <= 2 &&
           (value.size() == 1 || value.Lookup(kUnitKey));
}

MetadataText NumberOf(const Var& value) {
    std::int64_t integer = 0;
    if (IsInteger(value) && value.copy_to(integer)) return {std::to_string(integer), true};
    double number = 0;
    value.copy_to(number);
    return std::isfinite(number) ? MetadataText{NumberText(number), true} : MetadataText{};
}

MetadataText ScalarOf(const Var& value) {
    if (IsNumber(value)) return NumberOf(value);
    if (value.GetTag() == qn::VarTag::kBool) return {value.ToBool() ? "true" : "false", false};
    return {value.IsText() ? value.ToText().ToUtf8() : std::string(), false};
}

MetadataText ArrayOf(const Var& array) {
    std::string text;
    for (int i = 0; i < array.size(); ++i) {
        const std::string part = ScalarOf(array.ValueAt(i)).text;
        if (!part.empty()) text += (text.empty() ? "" : ", ") + part;
    }
    return {text, false};
}

MetadataText TextOf(const Var& value) {
    if (value.IsArray()) return ArrayOf(value);
    if (!IsMeasure(value)) return ScalarOf(value);
    const Var* unit = value.Lookup(kUnitKey);
    const Var& number = *value.Lookup(kValueKey);
    const MetadataText text = number.IsArray() ? ArrayOf(number) : ScalarOf(number);
    if (!unit || text.text.empty()) return text;
    return {text.text + " " + ScalarOf(*unit).text, false};
}

std::string KeyAt(const Var& map, int position) {
    return map.KeyAt(position).to_string().ToText().ToUtf8();
}

/// The value under a joined key; a single key may hold a "/" of its own.
Var Find(const Var& map, std::string_view key) {
    for (int i = 0; map.IsMap() && i < map.size(); ++i) {
        const std::string first = KeyAt(map, i);
        if (first == key) return map.ValueAt(i);
        const bool leads = key.size() > first.size() && key[first.size()] == '/' && key.starts_with(first);
        if (!leads) continue;
        const Var found = Find(map.ValueAt(i), key.substr(first.size() + 1));
        if (found.IsSet()) return found;
    }
    return {};
}

}  // namespace

void CollectMetadataKeys(const qn::graph::HierarchyElement& element, std::set<std::string>& keys) {
    std::vector<std::pair<Var, std::string>> open{{MetadataOf(element), {}}};
    std::unordered_set<const VarMap*> met;
    while (!open.empty()) {
        const auto [map, prefix] = std::move(open.back());
        open.pop_back();
        if (!map.IsMap() || !met.insert(map.ToMap()).second) continue;
        for (int i = 0; i < map.size(); ++i) {
            const Var value = map.ValueAt(i);
            const std::string key = prefix + KeyAt(map, i);
            if (value.IsMap() && !IsMeasure(value))
                open.emplace_back(value, key + "/");
            else
                keys.insert(key);
        }
    }
}

MetadataText ReadMetadata(const qn::graph::HierarchyElement& element, std::string_view key) {
    return TextOf(Find(MetadataOf(element), key));
}

}  // namespace assembly::tool

#include "graph/lookup_table_impl.h"

#include <string_view>

namespace qn::graph {

namespace {

constexpr wchar_t kPathSeparator = L'/';
constexpr wchar_t kPartSeparator = L'|';
constexpr int kPathsEntry = 0;
constexpr int kIdsEntry = 1;

/// The last piece that is not empty; the empty text if there is none.
std::wstring_view LastPiece(std::wstring_view text, wchar_t separator) {
    const auto last = text.find_last_not_of(separator);
    if (last == std::wstring_view::npos) return {};
    const auto before = text.find_last_of(separator, last);
    const auto first = before == std::wstring_view::npos ? 0 : before + 1;
    return text.substr(first, last + 1 - first);
}

/// Calls `visit` with the text of each key of the map under that number; nothing if it is no map.
template <class Visit>
void ForEachKey(const Var& filter, int entry, Visit&& visit) {
    const Var* keys = filter.Lookup(entry);
    const VarMap* map = keys ? keys->ToMap() : nullptr;
    for (int i = 0; map && i < map->GetCount(); ++i)
        visit(map->KeyAt(i).ToText());
}

}  // namespace

void LookupTableImpl::ReadIdFilter() {
    allowedIds.clear();
    filterActive = false;
    const Counted<Context> living = context.Lock();
    if (!living) return;
    const Var filter = living->GetParamVar(Param::kIdFilter);
    if (filter.IsEmpty()) return;
    filterActive = true;
    ForEachKey(filter, kIdsEntry, [this](const String& key) {
        const auto id = LastPiece(LastPiece(key.View(), kPathSeparator), kPartSeparator);
        if (!id.empty()) allowedIds.insert(String(id));
    });
    ForEachKey(filter, kPathsEntry, [this](const String& key) { allowedPaths.insert(key); });
}

bool LookupTableImpl::IsPathAllowed(const String& text) const {
    return !filterActive || allowedPaths.count(text) != 0;
}

bool LookupTableImpl::IsIdAllowed(const String& text) const {
    const auto id = LastPiece(text.View(), kPartSeparator);
    return !id.empty() && allowedIds.count(String(id)) != 0;
}

bool LookupTableImpl::IsElementAllowed(HierarchyElement* element) const {
    if (!filterActive) return true;
    const Var bsId = element ? element->GetProperty(Prop::kBsId, 0) : Var();
    return bsId.IsSet() && IsIdAllowed(bsId.ToText());
}

}  // namespace qn::graph

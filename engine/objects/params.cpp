#include "frame/host/params.h"

#include "engine/objects/param_word.h"
#include "engine/values/value_copier.h"

#include <algorithm>
#include <utility>

namespace qn {
namespace {

/// Where the row of `id` stands, or would stand.
template <class Rows>
auto PlaceOf(Rows& rows, int id) noexcept {
    return std::lower_bound(rows.begin(), rows.end(), id,
                            [](const auto& row, int wanted) { return row.id < wanted; });
}

}  // namespace

Counted<Params> Params::Create() {
    return Make<Params>();
}
Params::Params() = default;
Params::~Params() = default;

int Params::GetParamType(int id) const {
    const Var* value = Find(id);
    return value ? value->GetTag() : VarTag::kEmpty;
}

void Params::SetParam(int id, ParamWord value, k3_VALUETYPE type) {
    SetParamVar(id, ValueOfWord(value, type));
}

ParamWord Params::GetParam(int id, ParamWord fallback, k3_VALUETYPE type) const {
    return WordOfValue(Find(id), fallback, type);
}

void Params::SetParamVar(int id, const Var& value) {
    if (value.IsEmpty()) return DeleteParam(id);
    const auto place = PlaceOf(rows_, id);
    if (place == rows_.end() || place->id != id)
        rows_.insert(place, Row{id, value});
    else
        std::exchange(place->value, value);
}

Var Params::GetParamVar(int id) const {
    const Var* value = Find(id);
    return value ? *value : Var();
}

void Params::DeleteParam(int id) {
    const auto place = PlaceOf(rows_, id);
    if (place == rows_.end() || place->id != id) return;
    const Row gone = std::move(*place);  // dropped when the table is whole again
    rows_.erase(place);
}

const Var* Params::Find(int id) const noexcept {
    const auto place = PlaceOf(rows_, id);
    return place != rows_.end() && place->id == id ? &place->value : nullptr;
}

Counted<Params> Params::Copy() const {
    return ValueCopier().CopyParams(this);
}

bool Params::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_params") || Extension::IsTypeOf(name);
}

const ClassRecord& Params::StaticClass() {
    static const ClassRecord& record = InternClass("qn::Params");
    return record;
}

void* Params::CastTo(const ClassRecord& wanted) {
    return CastThrough<Params, Extension>(this, wanted);
}

}  // namespace qn

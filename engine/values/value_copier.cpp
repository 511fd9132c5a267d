#include "engine/values/value_copier.h"

#include "frame/host/collections.h"
#include "frame/host/params.h"

namespace qn {

Var ValueCopier::Copy(const Var& value) {
    if (const VarMap* map = value.ToMap()) return Var(CopyMap(map));
    if (const VarArray* array = value.ToArray()) return Var(CopyArray(array));
    return value;
}

Counted<VarMap> ValueCopier::CopyMap(const VarMap* map) {
    if (!map) return nullptr;
    auto copy = Shell(*map);
    Finish();
    return copy;
}

Counted<VarArray> ValueCopier::CopyArray(const VarArray* array) {
    if (!array) return nullptr;
    auto copy = Shell(*array);
    Finish();
    return copy;
}

Counted<Params> ValueCopier::CopyParams(const Params* params) {
    if (!params) return nullptr;
    auto copy = Shell(*params);
    Finish();
    return copy;
}

/// What stands for the value inside a copy; a copied container is still empty.
Var ValueCopier::Nested(const Var& value) {
    if (!deep_ || value.IsWeak()) return value;
    Var copy;
    if (const VarMap* map = value.ToMap())
        copy = Var(Shell(*map));
    else if (const VarArray* array = value.ToArray())
        copy = Var(Shell(*array));
    else
        return value;
    copy.SetValueFlags(value.GetValueFlags());
    return copy;
}

template <class Container>
Counted<Container> ValueCopier::Shell(const Container& source) {
    // An object with a single count stands in one place only.
    const bool shared = source.GetRefCount() > 1;
    if (shared) {
        const auto known = shells_.find(&source);
        if (known != shells_.end()) return Counted<Container>(static_cast<Container*>(known->second));
    }
    auto copy = Container::Create();
    if (!copy) return nullptr;
    if (shared) shells_.emplace(&source, copy.Get());
    pending_.push_back({&source, copy.Get(), &ValueCopier::FillAs<Container>});
    return copy;
}

template <class Container>
void ValueCopier::FillAs(Extension& copy, const Extension& source) {
    Fill(static_cast<Container&>(copy), static_cast<const Container&>(source));
}

void ValueCopier::Finish() {
    while (!pending_.empty()) {
        const Pending next = pending_.back();
        pending_.pop_back();
        (this->*next.fill)(*next.copy, *next.source);
    }
}

void ValueCopier::Fill(VarMap& copy, const VarMap& source) {
    copy.CopyRowsFrom(source);
    for (VarMap::Row& row : copy.rows_) {
        if (row.key.HoldsInterface()) row.key = Nested(row.key);
        if (row.value.HoldsInterface()) row.value = Nested(row.value);
    }
    FillBase(copy, source);
}

void ValueCopier::Fill(VarArray& copy, const VarArray& source) {
    copy.values_ = source.values_;
    for (Var& value : copy.values_)
        if (value.HoldsInterface()) value = Nested(value);
    FillBase(copy, source);
}

void ValueCopier::Fill(Params& copy, const Params& source) {
    for (int i = 0; i < source.GetCount(); ++i)
        copy.SetParamVar(source.IdAt(i), Nested(source.ValueAt(i)));
}

void ValueCopier::FillBase(Extension& copy, const Extension& source) {
    if (Params* params = const_cast<Extension&>(source).GetParams(false))
        copy.SetParams(Shell(*params).Get());
    if (const VarMap* metadata = source.GetMetadata(false)) copy.SetMetadata(Shell(*metadata).Get());
}

}  // namespace qn

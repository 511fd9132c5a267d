#pragma once

namespace qn {

/// Identity of one C++ class across all modules: two records of one name are one object, so classes are
/// compared by address. Made by `InternClass`, lives until the process ends.
struct ClassRecord {
    const char* name;  ///< qualified C++ name, owned by the record
};

/// The one record of `name`. The engine owns all records.
const ClassRecord& InternClass(const char* name);

/// What a class's `CastTo` does: `self` if `wanted` is its own record, else the answer of the first base that
/// knows it.
template <class Self, class... Bases>
void* CastThrough(Self* self, const ClassRecord& wanted) {
    if (&wanted == &Self::StaticClass()) return self;
    void* found = nullptr;
    (void)((found = static_cast<Bases*>(self)->Bases::CastTo(wanted)) || ...);
    return found;
}

/// The object as a `T`, or null if it is null or of another class. Reaches across bases.
template <class T, class From>
T* Cast(From* object) {
    return object ? static_cast<T*>(object->CastTo(T::StaticClass())) : nullptr;
}

template <class T, class From>
const T* Cast(const From* object) {
    return Cast<T>(const_cast<From*>(object));
}

}  // namespace qn

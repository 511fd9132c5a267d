#include "frame/host/collections.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace qn {

Counted<InterfaceArray> InterfaceArray::CreateStrong() {
    return Make<InterfaceArray>(true);
}
Counted<InterfaceArray> InterfaceArray::CreateWeak() {
    return Make<InterfaceArray>(false);
}
InterfaceArray::InterfaceArray(bool strong) : strong_(strong) {}
InterfaceArray::~InterfaceArray() = default;

Interface* InterfaceArray::Get(int index) const {
    return index >= 0 && index < GetCount() ? entries_[static_cast<std::size_t>(index)].ToInterface()
                                            : nullptr;
}

void InterfaceArray::Set(int index, Interface* object) {
    if (index < 0) return;
    if (index >= GetCount()) entries_.resize(static_cast<std::size_t>(index) + 1);
    Var entry(object, strong_ ? 1 : 0);
    std::swap(entries_[static_cast<std::size_t>(index)], entry);  // the old one goes last
}

int InterfaceArray::Add(Interface* object) {
    entries_.emplace_back(object, strong_ ? 1 : 0);
    return GetCount() - 1;
}

int InterfaceArray::Find(const Interface* object) const {
    for (int i = 0; i < GetCount(); ++i)
        if (Get(i) == object) return i;
    return -1;
}

void InterfaceArray::RemoveAt(int index, int count) {
    if (index < 0 || index >= GetCount() || count <= 0) return;
    const auto first = entries_.begin() + index;
    const auto last = first + std::min(count, GetCount() - index);
    const std::vector<Var> gone(std::make_move_iterator(first), std::make_move_iterator(last));
    entries_.erase(first, last);
}

void InterfaceArray::Clear() {
    const auto gone = std::exchange(entries_, {});
}

bool InterfaceArray::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_interfacearray") || ReferenceSource::IsTypeOf(name);
}

const ClassRecord& InterfaceArray::StaticClass() {
    static const ClassRecord& record = InternClass("qn::InterfaceArray");
    return record;
}

void* InterfaceArray::CastTo(const ClassRecord& wanted) {
    return CastThrough<InterfaceArray, ReferenceSource>(this, wanted);
}

Counted<PointerArray> PointerArray::Create() {
    return Make<PointerArray>();
}
PointerArray::PointerArray() : InterfaceArray(false) {}

bool PointerArray::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_pointerarray") || InterfaceArray::IsTypeOf(name);
}

const ClassRecord& PointerArray::StaticClass() {
    static const ClassRecord& record = InternClass("qn::PointerArray");
    return record;
}

void* PointerArray::CastTo(const ClassRecord& wanted) {
    return CastThrough<PointerArray, InterfaceArray>(this, wanted);
}

Collection::Collection() : InterfaceArray(true) {}

bool Collection::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_collection") || InterfaceArray::IsTypeOf(name);
}

const ClassRecord& Collection::StaticClass() {
    static const ClassRecord& record = InternClass("qn::Collection");
    return record;
}

void* Collection::CastTo(const ClassRecord& wanted) {
    return CastThrough<Collection, InterfaceArray>(this, wanted);
}

}  // namespace qn

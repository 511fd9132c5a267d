#include "engine/values/utf8.h"
#include "engine/values/var_access.h"
#include "frame/host/collections.h"

#include <array>
#include <cstring>
#include <string>

// Access to the elements of arrays and maps through a value.

namespace qn {
namespace {

/// A value that is handed out where nothing can be stored; empty at each call.
Var& Scratch() {
    static Var& scratch = *new Var;  // outlives every other static object
    scratch = Var();
    return scratch;
}

/// Calls `use` with the wide form of the text; short texts need no allocation.
template <class Use>
auto WithWideText(const char* utf8, Use&& use) {
    const std::string_view text = utf8 ? std::string_view(utf8) : std::string_view();
    std::array<wchar_t, 128> buffer;
    if (text.size() <= buffer.size())
        return use(std::wstring_view(buffer.data(), utf8::Decode(text, buffer.data())));
    return use(String::FromUtf8(text).View());
}

std::wstring_view ViewOfLetters(const wchar_t* text) {
    return text ? std::wstring_view(text) : std::wstring_view();
}

bool ToIndex(const Var& key, int& index) {
    return VarAccess::IsNumber(key) && key.copy_to(index) && index >= 0;
}

}  // namespace

Var& Var::At(int key) {
    if (VarArray* array = ToArray()) return key >= 0 ? array->At(key) : Scratch();
    if (!ToMap()) InitMap();
    VarMap* map = ToMap();
    return map ? map->At(key) : Scratch();
}

Var& Var::At(const char* key) {
    const Var* present = Lookup(key);
    return present ? const_cast<Var&>(*present) : At(Var(key));
}

Var& Var::At(const wchar_t* key) {
    const Var* present = Lookup(key);
    return present ? const_cast<Var&>(*present) : At(Var(key));
}

Var& Var::At(const Var& key) {
    if (VarArray* array = ToArray()) {
        int index = -1;
        return ToIndex(key, index) ? array->At(index) : Scratch();
    }
    const Var held(key);  // may be this very value
    if (!ToMap()) InitMap();
    VarMap* map = ToMap();
    return map ? map->At(held) : Scratch();
}

const Var* Var::Lookup(int key) const {
    if (const VarMap* map = ToMap()) return map->Lookup(key);
    const VarArray* array = ToArray();
    return array && key >= 0 && key < array->GetCount() ? &array->Get(key) : nullptr;
}

const Var* Var::Lookup(const char* key) const {
    const VarMap* map = ToMap();
    return map ? WithWideText(key, [map](std::wstring_view text) { return map->LookupText(text); }) : nullptr;
}

const Var* Var::Lookup(const wchar_t* key) const {
    const VarMap* map = ToMap();
    return map ? map->LookupText(ViewOfLetters(key)) : nullptr;
}

const Var* Var::Lookup(const Var& key) const {
    if (const VarMap* map = ToMap()) return map->Lookup(key);
    int index = -1;
    return IsArray() && ToIndex(key, index) ? Lookup(index) : nullptr;
}

Var Var::KeyAt(int position) const {
    if (position < 0 || !HoldsInterface() || position >= size()) return Var();
    const VarMap* map = ToMap();
    return map ? map->KeyAt(position) : Var(position);
}

Var Var::ValueAt(int position) const {
    if (position < 0 || !HoldsInterface() || position >= size()) return Var();
    const VarMap* map = ToMap();
    return map ? map->ValueAt(position) : ToArray()->Get(position);
}

bool Var::Remove(const Var& key) {
    if (VarMap* map = ToMap()) return map->Remove(key);
    VarArray* array = ToArray();
    int index = -1;
    if (!array || !ToIndex(key, index) || index >= array->GetCount()) return false;
    array->RemoveAt(index);
    return true;
}

void Var::InitMap() {
    const unsigned flags = flags_;
    *this = Var(VarMap::Create());
    flags_ = flags;
}

void Var::InitArray(int count) {
    const unsigned flags = flags_;
    *this = Var(VarArray::Create(count));
    flags_ = flags;
}

}  // namespace qn

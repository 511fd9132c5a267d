#include "frame/host/var.h"

#include "engine/values/value_copier.h"
#include "engine/values/var_access.h"
#include "frame/host/collections.h"

#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <new>
#include <typeinfo>

namespace qn {
namespace {

std::uint8_t TagOf(const Interface& object) {
    if (typeid(object) == typeid(VarMap)) return VarTag::kMap;
    if (typeid(object) == typeid(VarArray)) return VarTag::kArray;
    return VarTag::kObject;
}

BlockBody* MakeBlock(const void* bytes, std::size_t size) {
    void* storage = std::malloc(sizeof(BlockBody) + size);
    if (!storage) throw std::bad_alloc();
    auto* body = new (storage) BlockBody{1, size};
    if (size) std::memcpy(body->Bytes(), bytes, size);
    return body;
}

}  // namespace

Var::Var(const char* utf8, int length) : tag_(VarTag::kText) {
    const std::size_t size = !utf8 ? 0 : length < 0 ? std::strlen(utf8) : static_cast<std::size_t>(length);
    payload_.text = TextBody::MakeFromUtf8({utf8, size});
}

Var::Var(const wchar_t* text, int length) : Var(String(text, length)) {}

Var::Var(const String& text) : tag_(VarTag::kText) {
    payload_.text = text.body_;
    if (payload_.text) payload_.text->Retain();
}

Var::Var(const Guid& id) : Var(id.ToText()) {}

Var::Var(const Matrix4<double>& matrix) : tag_(VarTag::kMatrix) {
    payload_.matrix = MatrixBody::Make(matrix);
}

Var::Var(Interface* object, int counted) {
    if (!object) return;
    tag_ = TagOf(*object);
    if (counted) {
        payload_.object = object;
        object->AddRef();
    } else {
        weak_ = 1;
        payload_.cell = WeakPtrBase::HoldCell(object);
    }
}

Var Var::Block(const void* bytes, std::size_t size) {
    Var result;
    result.payload_.block = MakeBlock(bytes, size);
    result.tag_ = VarTag::kBlock;
    return result;
}

void Var::Retain() noexcept {
    switch (tag_) {
        case VarTag::kText:
            if (payload_.text) payload_.text->Retain();
            break;
        case VarTag::kMatrix:
            ++payload_.matrix->count;
            break;
        case VarTag::kBlock:
            ++payload_.block->count;
            break;
        default:
            if (!weak_)
                payload_.object->AddRef();
            else if (payload_.cell)
                ThreadsafeIncrement(&payload_.cell->holders);
    }
}

void Var::Drop() noexcept {
    switch (tag_) {
        case VarTag::kText:
            if (payload_.text) payload_.text->Drop();
            break;
        case VarTag::kMatrix:
            if (--payload_.matrix->count == 0) payload_.matrix->Destroy();
            break;
        case VarTag::kBlock:
            if (--payload_.block->count == 0) std::free(payload_.block);
            break;
        default:
            if (weak_)
                WeakPtrBase::DropCell(payload_.cell);
            else
                payload_.object->Release();
    }
}

Interface* Var::ToInterface() const {
    if (!HoldsInterface()) return nullptr;
    if (!weak_) return payload_.object;
    return payload_.cell ? payload_.cell->object : nullptr;
}

VarMap* Var::ToMap() const {
    return IsMap() ? static_cast<VarMap*>(ToInterface()) : nullptr;
}
VarArray* Var::ToArray() const {
    return IsArray() ? static_cast<VarArray*>(ToInterface()) : nullptr;
}

std::string_view Var::BlockBytes() const noexcept {
    if (tag_ != VarTag::kBlock) return {};
    return {payload_.block->Bytes(), payload_.block->size};
}

int Var::size() const {
    if (const VarMap* map = ToMap()) return map->GetCount();
    if (const VarArray* array = ToArray()) return array->GetCount();
    return IsText() ? static_cast<int>(ViewOf(payload_.text).size()) : 0;
}

void Var::MakeUnique(int cloneMode) {
    if (!IsMap() && !IsArray()) return;
    Var copy = ValueCopier(cloneMode).Copy(*this);
    copy.flags_ = flags_;
    *this = static_cast<Var&&>(copy);
}

}  // namespace qn

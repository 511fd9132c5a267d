#include "engine/values/var_access.h"
#include "frame/host/collections.h"

#include <cmath>
#include <cstring>
#include <functional>

namespace qn {
namespace {

std::size_t Mixed(std::uint64_t bits) noexcept {
    bits = (bits ^ bits >> 33) * 0xff51afd7ed558ccdu;
    bits = (bits ^ bits >> 33) * 0xc4ceb9fe1a85ec53u;
    return bits ^ bits >> 33;
}

/// A whole number hashes as the integer that it equals.
std::size_t HashOfReal(double value) noexcept {
    if (std::isnan(value)) return Mixed(0x7ff8);
    if (std::fabs(value) < 9223372036854775808.0 && std::trunc(value) == value)
        return Mixed(static_cast<std::uint64_t>(static_cast<std::int64_t>(value)));
    std::uint64_t bits;
    std::memcpy(&bits, &value, sizeof bits);
    return Mixed(bits);
}

std::size_t HashOfMatrix(const Matrix4<double>& matrix) noexcept {
    std::size_t hash = VarTag::kMatrix;
    for (const auto& row : matrix.m)
        for (const double value : row)
            hash = Mixed(hash * 31 + HashOfReal(value));
    return hash;
}

}  // namespace

std::size_t VarAccess::KeyHash(const Var& key) noexcept {
    switch (key.tag_) {
        case VarTag::kInt:
        case VarTag::kInt64:
            return Mixed(static_cast<std::uint64_t>(key.payload_.integer));
        case VarTag::kFloat:
        case VarTag::kDouble:
            return HashOfReal(key.payload_.real);
        case VarTag::kText:
            return key.payload_.text ? key.payload_.text->Hash() : HashOfText({});
        case VarTag::kBool:
            return key.payload_.integer ? 0x5bd1e995 : 0x1b873593;
        case VarTag::kBlock:
            return std::hash<std::string_view>()(key.BlockBytes());
        case VarTag::kMatrix:
            return HashOfMatrix(key.payload_.matrix->Get());
        case VarTag::kObject:
            return Mixed(reinterpret_cast<std::uintptr_t>(key.ToInterface()));
    }
    return key.tag_;
}

// Containers hash by their size and by what lies directly in them, so that a deep value costs no deep walk.
std::size_t Var::Hash() const {
    if (const VarArray* array = ToArray()) {
        std::size_t hash = Mixed(static_cast<std::uint64_t>(array->GetCount()) + VarTag::kArray);
        for (int i = 0; i < array->GetCount(); ++i)
            hash = Mixed(hash * 31 + VarAccess::KeyHash(array->Get(i)));
        return hash;
    }
    if (const VarMap* map = ToMap()) {
        std::size_t hash = Mixed(static_cast<std::uint64_t>(map->GetCount()) + VarTag::kMap);
        for (int i = 0; i < map->GetCount(); ++i)
            hash += Mixed(VarAccess::KeyHash(map->KeyAt(i)) * 31 + VarAccess::KeyHash(map->ValueAt(i)));
        return hash;
    }
    return VarAccess::KeyHash(*this);
}

}  // namespace qn

#include "engine/stream/stream_writer.h"
#include "engine/values/text_body.h"
#include "engine/values/utf8.h"
#include "engine/values/var_access.h"
#include "frame/host/stream.h"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

// Layout of a value: one byte with the tag and two marks, the flags word if it is not 0, then the payload by
// tag:
//   int and float 4 bytes, 64-bit and double 8, bool 1, matrix 16 doubles, text and block a length and bytes,
//   array, map and object the number of an object of the stream. All numbers have their low byte first.

namespace qn {
namespace {

constexpr std::uint8_t kTagMask = 0x3f;
constexpr std::uint8_t kHasFlags = 0x80;
constexpr std::uint8_t kIsWeak = 0x40;

template <class T>
bool Put(Stream* stream, T value) {
    return stream->WriteData(&value, static_cast<int>(sizeof value), 1);
}

template <class T>
bool Take(Stream* stream, T& value) {
    if (stream->ReadData(&value, static_cast<int>(sizeof value), 1) == 1) return true;
    value = T();
    return stream->Fail(L"a value ends before its last byte");
}

bool PutBytes(Stream* stream, const void* bytes, std::size_t size) {
    if (size > static_cast<std::size_t>(std::numeric_limits<int>::max())) return false;
    return Put(stream, static_cast<std::uint32_t>(size)) &&
           (size == 0 || stream->WriteData(bytes, 1, static_cast<int>(size)));
}

/// The bytes behind a length that is checked against what the chunk still has.
bool TakeBytes(Stream* stream, std::string& bytes, const wchar_t* what) {
    std::uint32_t size = 0;
    bytes.clear();
    if (!Take(stream, size)) return false;
    const std::size_t left = stream->Remaining();
    if (size > left || size > static_cast<std::uint32_t>(std::numeric_limits<int>::max())) {
        String text;
        text.Format(L"a %s claims %u bytes, only %llu are left", what, size,
                    static_cast<unsigned long long>(left));
        return stream->Fail(text);
    }
    bytes.resize(size);
    if (size == 0 || stream->ReadData(bytes.data(), 1, static_cast<int>(size)) == static_cast<int>(size))
        return true;
    bytes.clear();
    return stream->Fail(L"a text or block ends before its last byte");
}

template <class T>
bool TakeAs(Stream* stream, Var& out) {
    T value;
    if (!Take(stream, value)) return false;
    out = Var(value);
    return true;
}

bool TakeBool(Stream* stream, Var& out) {
    std::uint8_t value = 0;
    if (!Take(stream, value)) return false;
    out = Var(value != 0);
    return true;
}

bool TakeText(Stream* stream, Var& out) {
    String text;
    if (!text.Load(stream)) return false;
    out = Var(text);
    return true;
}

bool TakeBlock(Stream* stream, Var& out) {
    std::string bytes;
    if (!TakeBytes(stream, bytes, L"block")) return false;
    out = Var::Block(bytes.data(), bytes.size());
    return true;
}

bool TakeMatrix(Stream* stream, Var& out) {
    Matrix4<double> matrix;
    for (auto& row : matrix.m)
        for (double& value : row)
            if (!Take(stream, value)) return false;
    out = Var(matrix);
    return true;
}

bool PutMatrix(Stream* stream, const Matrix4<double>& matrix) {
    for (const auto& row : matrix.m)
        for (const double value : row)
            if (!Put(stream, value)) return false;
    return true;
}

bool PutPayload(Stream* stream, Context* context, const Var& value) {
    switch (value.GetTag()) {
        case VarTag::kInt:
            return Put(stream, static_cast<std::int32_t>(VarAccess::Integer(value)));
        case VarTag::kInt64:
            return Put(stream, VarAccess::Integer(value));
        case VarTag::kFloat:
            return Put(stream, static_cast<float>(VarAccess::Real(value)));
        case VarTag::kDouble:
            return Put(stream, VarAccess::Real(value));
        case VarTag::kText:
            return value.ToText().Save(stream);
        case VarTag::kBool:
            return Put(stream, static_cast<std::uint8_t>(value.ToBool()));
        case VarTag::kBlock:
            return PutBytes(stream, value.BlockBytes().data(), value.BlockBytes().size());
        case VarTag::kMatrix:
            return PutMatrix(stream, VarAccess::Matrix(value));
        case VarTag::kArray:
        case VarTag::kMap:
        case VarTag::kObject:
            return stream->WriteObjectNumber(value.ToInterface(), context, value.IsWeak());
    }
    return true;
}

bool TakePayload(Stream* stream, Context* context, std::uint8_t tag, bool weak, Var& out) {
    switch (tag) {
        case VarTag::kEmpty:
            return true;
        case VarTag::kInt:
            return TakeAs<std::int32_t>(stream, out);
        case VarTag::kInt64:
            return TakeAs<std::int64_t>(stream, out);
        case VarTag::kFloat:
            return TakeAs<float>(stream, out);
        case VarTag::kDouble:
            return TakeAs<double>(stream, out);
        case VarTag::kText:
            return TakeText(stream, out);
        case VarTag::kBool:
            return TakeBool(stream, out);
        case VarTag::kBlock:
            return TakeBlock(stream, out);
        case VarTag::kMatrix:
            return TakeMatrix(stream, out);
        case VarTag::kArray:
        case VarTag::kMap:
        case VarTag::kObject:
            // The object itself settles the tag; one that was not stored leaves an empty value.
            out = Var(stream->ReadObjectNumber(context).Get(), weak ? 0 : 1);
            return !stream->HasFailed();
    }
    String text;
    text.Format(L"a value has the unknown tag 0x%x", static_cast<unsigned>(tag));
    return stream->Fail(text);
}

}  // namespace

bool Var::Save(Stream* stream, Context* context) const {
    const bool gone = HoldsInterface() && !IsStored(stream, ToInterface(), IsWeak());
    const Var empty;
    const Var& stored = gone ? empty : *this;
    const auto head =
        static_cast<std::uint8_t>(stored.tag_ | (flags_ ? kHasFlags : 0) | (stored.weak_ ? kIsWeak : 0));
    if (!Put(stream, head) || (flags_ && !Put(stream, static_cast<std::uint32_t>(flags_)))) return false;
    return PutPayload(stream, context, stored);
}

bool Var::Load(Stream* stream, Context* context) {
    *this = Var();
    std::uint8_t head = 0;
    std::uint32_t flags = 0;
    if (!Take(stream, head) || (head & kHasFlags && !Take(stream, flags))) return false;
    Var read;
    if (!TakePayload(stream, context, head & kTagMask, head & kIsWeak, read)) return false;
    read.flags_ = flags;
    *this = static_cast<Var&&>(read);
    return true;
}

bool String::Save(Stream* stream, unsigned short) const {
    const char* bytes = Utf8CStr();
    return PutBytes(stream, bytes, utf8::CountBytes(View()));
}

bool String::Load(Stream* stream) {
    Clear();
    std::string bytes;
    if (!TakeBytes(stream, bytes, L"text")) return false;
    *this = FromUtf8(bytes);
    return true;
}

}  // namespace qn

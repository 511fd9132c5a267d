#pragma once

#include "frame/host/counted.h"
#include "frame/host/guid.h"
#include "frame/host/matrix.h"
#include "frame/host/string.h"

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qn {

class Context;
class Stream;
class VarArray;
class VarMap;
struct MatrixBody;
struct BlockBody;

/// Type tags of a `Var`. Integers and floats come in two widths each; readers accept both of a pair.
namespace VarTag {
inline constexpr std::uint8_t kEmpty = 0;
inline constexpr std::uint8_t kInt = 1;
inline constexpr std::uint8_t kInt64 = 2;
inline constexpr std::uint8_t kFloat = 3;
inline constexpr std::uint8_t kDouble = 4;
inline constexpr std::uint8_t kText = 5;
inline constexpr std::uint8_t kBool = 7;
inline constexpr std::uint8_t kBlock =
    0x0a;  ///< opaque bytes, carried for the node parameters 0x6302 and 0x6303
inline constexpr std::uint8_t kMatrix = 0x0b;
inline constexpr std::uint8_t kArray = 0x0f;
inline constexpr std::uint8_t kMap = 0x10;
inline constexpr std::uint8_t kObject = 0x11;
}  // namespace VarTag

/// A variant of 16 bytes: payload, tag, flags word. Texts, matrices, collections and objects are shared and
/// counted.
class Var {
public:
    Var() noexcept = default;
    template <std::same_as<bool> B>
    Var(B value) noexcept : tag_(VarTag::kBool) {
        payload_.integer = value ? 1 : 0;
    }
    Var(int value) noexcept : tag_(VarTag::kInt) { payload_.integer = value; }
    Var(std::int64_t value) noexcept : tag_(VarTag::kInt64) { payload_.integer = value; }
    Var(float value) noexcept : tag_(VarTag::kFloat) { payload_.real = value; }
    Var(double value) noexcept : tag_(VarTag::kDouble) { payload_.real = value; }
    Var(const char* utf8, int length = -1);
    Var(const wchar_t* text, int length = -1);
    Var(const String& text);
    Var(const Guid& id);  ///< its text
    Var(const Matrix4<double>& matrix);
    /// Tag kArray, kMap or kObject by the object's class; null gives an empty value. counted 1 holds a count,
    /// 0 only watches: a dead object reads null, the tag stays.
    Var(Interface* object, int counted = 1);
    template <class T>
    Var(const Counted<T>& object) : Var(static_cast<Interface*>(object.Get()), 1) {}
    /// A value of tag kBlock with a copy of the bytes.
    static Var Block(const void* bytes, std::size_t size);

    Var(const Var& other) noexcept
        : payload_(other.payload_), flags_(other.flags_), tag_(other.tag_), weak_(other.weak_) {
        if (tag_ >= VarTag::kText && tag_ != VarTag::kBool) Retain();
    }
    Var(Var&& other) noexcept
        : payload_(other.payload_), flags_(other.flags_), tag_(other.tag_), weak_(other.weak_) {
        other.tag_ = VarTag::kEmpty, other.weak_ = 0, other.flags_ = 0;
    }
    Var& operator=(const Var& other) noexcept {
        Var copy(other);
        return *this = static_cast<Var&&>(copy);
    }
    Var& operator=(Var&& other) noexcept {
        if (this == &other) return *this;
        const Var old(static_cast<Var&&>(*this));  // dropped last: it may own `other`
        payload_ = other.payload_, flags_ = other.flags_, tag_ = other.tag_, weak_ = other.weak_;
        other.tag_ = VarTag::kEmpty, other.weak_ = 0, other.flags_ = 0;
        return *this;
    }
    ~Var() {
        if (tag_ >= VarTag::kText && tag_ != VarTag::kBool) Drop();
    }

    std::uint8_t GetTag() const noexcept { return tag_; }
    /// "Set", "holds a value", "not empty": the tag is not 0.
    bool IsSet() const noexcept { return tag_ != VarTag::kEmpty; }
    bool IsEmpty() const noexcept { return tag_ == VarTag::kEmpty; }
    bool IsMap() const noexcept { return tag_ == VarTag::kMap; }
    bool IsArray() const noexcept { return tag_ == VarTag::kArray; }
    bool IsText() const noexcept { return tag_ == VarTag::kText; }
    bool IsMatrix() const noexcept { return tag_ == VarTag::kMatrix; }
    /// Tags kArray, kMap, kObject.
    bool HoldsInterface() const noexcept { return tag_ >= VarTag::kArray && tag_ <= VarTag::kObject; }
    bool IsWeak() const noexcept { return weak_ != 0; }

    /// Each tells whether it converted; on failure `out` is zero, false, empty or null.
    bool copy_to(bool& out) const;
    bool copy_to(int& out) const;
    bool copy_to(std::int64_t& out) const;
    bool copy_to(float& out) const;
    bool copy_to(double& out) const;
    bool copy_to(String& out) const;
    bool copy_to(const char*& out) const;  ///< UTF-8, lives as long as the value's text
    bool copy_to(Guid& out) const;
    bool copy_to(Matrix4<double>& out) const;
    bool copy_to(Interface*& out) const;  ///< borrowed; any of the three tags
    bool copy_to(VarMap*& out) const;     ///< borrowed; tag kMap only
    bool copy_to(VarArray*& out) const;   ///< borrowed; tag kArray only

    /// Short forms of `copy_to`.
    bool ToBool() const;
    int ToInt() const;
    String ToText() const;
    Interface* ToInterface() const;
    VarMap* ToMap() const;
    VarArray* ToArray() const;
    /// The bytes of a value of tag kBlock, else nothing.
    std::string_view BlockBytes() const noexcept;
    /// A text value of this one; the empty text if there is none.
    Var to_string() const;
    /// Elements of an array or map, length of a text, else 0.
    int size() const;

    /// The value under the key, created empty if missing; an empty value becomes a map first, any other that
    /// is no container is replaced by an empty map. An array grows for an index; a text key or a negative
    /// index on an array gives a scratch value that is not stored. The result is valid until the container
    /// changes.
    Var& At(int key);
    Var& At(const char* key);
    Var& At(const wchar_t* key);
    Var& At(const Var& key);
    /// The value under the key or null; never creates.
    const Var* Lookup(int key) const;
    const Var* Lookup(const char* key) const;
    const Var* Lookup(const wchar_t* key) const;
    const Var* Lookup(const Var& key) const;
    /// Key and value at a position of a map (for an array: the index and the element); empty outside.
    Var KeyAt(int position) const;
    Var ValueAt(int position) const;
    bool Remove(const Var& key);
    void InitMap();
    void InitArray(int count);
    /// For each key of the argument: missing here: a private copy goes in; both maps: recurse; else the
    /// argument wins. In place on the shared map. An empty receiver becomes a private copy; if either is no
    /// map, nothing.
    void Merge(const Var& value, int reserved);
    /// Makes nested arrays and maps private copies; other objects stay shared, value flags are kept.
    void MakeUnique(int cloneMode = 1);

    unsigned GetValueFlags() const noexcept { return flags_; }
    void SetValueFlags(unsigned flags) noexcept { flags_ = flags; }

    /// Below 0, 0, above 0 in the order empty, bool, number, text, matrix and block, array, map, object.
    /// Flags do not count.
    int Compare(const Var& other) const;
    friend bool operator==(const Var& left, const Var& right) { return left.Compare(right) == 0; }
    friend bool operator<(const Var& left, const Var& right) { return left.Compare(right) < 0; }
    /// Agrees with ==.
    std::size_t Hash() const;

    /// The value with its tag and flags at the stream's present position; objects by their number in the
    /// stream.
    bool Save(Stream* stream, Context* context) const;
    bool Load(Stream* stream, Context* context);

private:
    friend struct VarAccess;  // engine private
    void Retain() noexcept;
    void Drop() noexcept;

    union Payload {
        std::int64_t integer;
        double real;
        TextBody* text;
        MatrixBody* matrix;
        BlockBody* block;
        Interface* object;
        WeakCell* cell;
    };
    Payload payload_{0};
    unsigned flags_ = 0;
    std::uint8_t tag_ = VarTag::kEmpty;
    std::uint8_t weak_ = 0;
};

static_assert(sizeof(Var) == 16);

/// The object that the value holds as a `T`, borrowed, or null.
template <class T>
T* Cast(const Var& value) {
    return Cast<T>(value.ToInterface());
}

}  // namespace qn

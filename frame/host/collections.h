#pragma once

#include "frame/host/reference_source.h"

#include <memory>
#include <string_view>
#include <vector>

namespace qn {

/// The map behind a `Var`: insertion order is kept, keys are compared by ==, narrow and wide texts are one
/// key. KeyAt and ValueAt take constant time; an index stands beside the rows above a small size.
class VarMap final : public ReferenceSource {
public:
    static Counted<VarMap> Create();
    VarMap();
    ~VarMap() override;

    int GetCount() const noexcept { return static_cast<int>(rows_.size()) - holes_; }
    const Var& KeyAt(int position) const { return RowAt(position).key; }
    const Var& ValueAt(int position) const { return RowAt(position).value; }
    Var& ValueAt(int position) { return RowAt(position).value; }
    const Var* Lookup(const Var& key) const;
    Var* Lookup(const Var& key);
    /// `Lookup` of a text key, without making a value of it.
    const Var* LookupText(std::wstring_view key) const;
    const Var* Lookup(int key) const;
    Var* Lookup(int key);
    Var& At(const Var& key);
    Var& At(int key);
    bool Remove(const Var& key);
    void Clear() override;
    void Reserve(int count);
    /// A private copy; `mode` 0x80 or 1 copies nested arrays and maps too and shares other objects.
    Counted<ReferenceSource> Clone(unsigned mode) const override;

    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override;
    ResultEnum Save(Stream* stream, Context* context) override;
    ResultEnum CopyFrom(const Interface* source, unsigned flags) override;
    const char* GetInterfaceName() const override { return "k3_varmap"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    struct Row {
        Var key;
        Var value;
    };
    struct Index;
    friend class ValueCopier;
    Row& RowAt(int position) const {
        if (holes_) Compact();
        return rows_[static_cast<std::size_t>(position)];
    }
    int Find(const Var& key) const;
    Var& Append(const Var& key);
    void Compact() const;
    void CopyRowsFrom(const VarMap& source);

    // Removing from the middle of a large map leaves a hole; the next call of another kind closes all of them
    // at once.
    mutable std::vector<Row> rows_;
    mutable int holes_ = 0;
    mutable std::unique_ptr<Index> index_;
};

/// The array behind a `Var`.
class VarArray final : public ReferenceSource {
public:
    /// An array of `count` empty values.
    static Counted<VarArray> Create(int count = 0);
    VarArray();
    ~VarArray() override;

    int GetCount() const noexcept { return static_cast<int>(values_.size()); }
    /// The element, an empty value outside.
    const Var& Get(int index) const;
    /// Grows with empties; a negative index does nothing.
    void Set(int index, const Var& value);
    Var& At(int index);
    int Add(const Var& value);
    /// The first index of an equal value, -1 if none.
    int Find(const Var& value) const;
    void RemoveAt(int index, int count = 1);
    void Clear() override;
    void Reserve(int count) { values_.reserve(static_cast<std::size_t>(count)); }
    Counted<ReferenceSource> Clone(unsigned mode) const override;

    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override;
    ResultEnum Save(Stream* stream, Context* context) override;
    ResultEnum CopyFrom(const Interface* source, unsigned flags) override;
    const char* GetInterfaceName() const override { return "k3_vararray"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    friend class ValueCopier;
    std::vector<Var> values_;
};

/// A list of objects, held by count (strong) or watched (weak: a dead entry reads null).
class InterfaceArray : public ReferenceSource {
public:
    static Counted<InterfaceArray> CreateStrong();
    static Counted<InterfaceArray> CreateWeak();
    explicit InterfaceArray(bool strong);
    ~InterfaceArray() override;

    bool IsStrong() const noexcept { return strong_; }
    int GetCount() const noexcept { return static_cast<int>(entries_.size()); }
    /// Borrowed; null outside or when dead.
    Interface* Get(int index) const;
    void Set(int index, Interface* object);
    int Add(Interface* object);
    int Find(const Interface* object) const;
    void RemoveAt(int index, int count = 1);
    void Clear() override;

    const char* GetInterfaceName() const override { return "k3_interfacearray"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    std::vector<Var> entries_;
    bool strong_;
};

/// A list of uncounted objects with weak cells beside them: a dead entry reads null.
class PointerArray final : public InterfaceArray {
public:
    static Counted<PointerArray> Create();
    PointerArray();

    const char* GetInterfaceName() const override { return "k3_pointerarray"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;
};

/// A counted list that `Api::CreateCollection` makes.
class Collection final : public InterfaceArray {
public:
    Collection();

    const char* GetInterfaceName() const override { return "k3_collection"; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;
};

}  // namespace qn

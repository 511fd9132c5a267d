#pragma once

#include "frame/host/class_record.h"
#include "frame/host/memory.h"
#include "frame/host/result.h"

#include <cstddef>

namespace qn {

class Guid;
class Interface;

/// The cell that an object shares with those who watch it: two words, allocated when the first watcher comes.
struct WeakCell {
    Interface* object;     ///< null once the object is gone
    volatile int holders;  ///< watchers, plus one for the object while it lives
};

/// The object's side of weak pointers.
class WeakPtrBase {
public:
    /// The object's cell, made on demand, with one holder added for the caller. Null only without memory.
    static WeakCell* HoldCell(Interface* object) noexcept;
    /// Drops one holder; the last one frees the cell. Null does nothing.
    static void DropCell(WeakCell* cell) noexcept;

protected:
    void ClearCell() noexcept;
    WeakCell* cell_ = nullptr;
};

/// The empty root of all host classes.
class Unknown {};

/// A counted object. It is born with one count, which belongs to whoever made it; the last `Release` deletes
/// it.
class Interface : public Unknown, public WeakPtrBase {
public:
    Interface() = default;
    Interface(const Interface&) = delete;
    Interface& operator=(const Interface&) = delete;

    virtual int AddRef() noexcept;
    virtual int Release() noexcept;
    /// Inert: answers kNothing and null.
    virtual ResultEnum QueryInterface(const Guid& id, Unknown*& out);
    /// This object with a count added, if `IsTypeOf(name)`; else null and kNothing.
    virtual ResultEnum QueryInterface(const char* name, Unknown*& out);
    virtual ~Interface();
    /// Clears the weak cell and destroys the object. Chains of owners of any length are taken apart without
    /// deep recursion.
    virtual void DeleteThis() noexcept;
    virtual int GetRefCount() const noexcept;
    /// The class key, constant text.
    virtual const char* GetInterfaceName() const;
    /// Whether `name` is the key of this class or of an ancestor, ignoring ASCII case. False for null.
    virtual bool IsTypeOf(const char* name) const;
    /// Copies what the class's text says; kWrongClass for a source of another class.
    virtual ResultEnum CopyFrom(const Interface* source, unsigned flags);
    /// The sub-object of class `wanted`, or null. Use `Cast<T>`.
    virtual void* CastTo(const ClassRecord& wanted);

    static const ClassRecord& StaticClass();

    static void* operator new(std::size_t size) noexcept { return mem::allocate(size); }
    static void* operator new(std::size_t, void* place) noexcept { return place; }
    static void operator delete(void* storage) noexcept { mem::free(storage); }
    static void operator delete(void*, void*) noexcept {}

protected:
    /// Copies nothing, answers kSuccess.
    ResultEnum CloneFrom(const Interface& source, unsigned flags);

private:
    friend class WeakPtrBase;
    int count_ = 1;
};

/// True if `left` and `right` are the same ASCII text without regard to case; false if one is null.
bool EqualKeys(const char* left, const char* right) noexcept;

}  // namespace qn

#pragma once

#include "frame/host/interface.h"

#include <cstddef>
#include <functional>
#include <utility>

namespace qn {

/// Owns one count of an object. Assignment takes the new object before it drops the old one.
template <class T>
class Counted {
public:
    Counted() = default;
    Counted(std::nullptr_t) {}
    /// Shares a borrowed object: adds a count.
    explicit Counted(T* borrowed) : object_(borrowed) {
        if (object_) object_->AddRef();
    }
    Counted(const Counted& other) : Counted(other.object_) {}
    Counted(Counted&& other) noexcept : object_(other.Detach()) {}
    template <class U>
    requires std::is_convertible_v<U*, T*> Counted(const Counted<U>& other)
        : Counted(static_cast<T*>(other.Get())) {}
    template <class U>
    requires std::is_convertible_v<U*, T*> Counted(Counted<U>&& other)
    noexcept : object_(other.Detach()) {}
    ~Counted() { Reset(); }

    Counted& operator=(Counted other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }

    /// Takes over a count that the caller has.
    static Counted Adopt(T* owned) noexcept {
        Counted result;
        result.object_ = owned;
        return result;
    }
    /// Hands the count to the caller.
    [[nodiscard]] T* Detach() noexcept { return std::exchange(object_, nullptr); }
    void Reset() noexcept {
        if (T* old = Detach()) old->Release();
    }

    T* Get() const noexcept { return object_; }
    T* operator->() const noexcept { return object_; }
    T& operator*() const noexcept { return *object_; }
    explicit operator bool() const noexcept { return object_ != nullptr; }
    friend bool operator==(const Counted& left, const Counted& right) {
        return left.object_ == right.object_;
    }
    friend bool operator==(const Counted& left, const T* right) { return left.object_ == right; }

private:
    T* object_ = nullptr;
};

/// A new object with its only count. Null without memory.
template <class T, class... Args>
Counted<T> Make(Args&&... args) {
    return Counted<T>::Adopt(new T(std::forward<Args>(args)...));
}

/// The object as a counted `T`, keeping the count; null (and the count dropped) if it is of another class.
template <class T, class U>
Counted<T> CountedCast(const Counted<U>& object) {
    return Counted<T>(Cast<T>(object.Get()));
}

/// Watches an object: reads as null once it is gone.
template <class T>
class Weak {
public:
    Weak() = default;
    explicit Weak(T* object) : cell_(object ? WeakPtrBase::HoldCell(object) : nullptr) {}
    Weak(const Weak& other) : cell_(other.cell_) {
        if (cell_) ThreadsafeIncrement(&cell_->holders);
    }
    Weak(Weak&& other) noexcept : cell_(std::exchange(other.cell_, nullptr)) {}
    ~Weak() { WeakPtrBase::DropCell(cell_); }
    Weak& operator=(Weak other) noexcept {
        std::swap(cell_, other.cell_);
        return *this;
    }
    Weak& operator=(T* object) { return *this = Weak(object); }

    void Reset() { *this = Weak(); }
    /// The object, borrowed, or null.
    T* Get() const noexcept { return cell_ && cell_->object ? static_cast<T*>(cell_->object) : nullptr; }
    /// The object with a count added; null if it is gone or on its way out.
    Counted<T> Lock() const {
        T* object = Get();
        return object && object->GetRefCount() > 0 ? Counted<T>(object) : Counted<T>();
    }
    explicit operator bool() const noexcept { return Get() != nullptr; }

private:
    WeakCell* cell_ = nullptr;
};

}  // namespace qn

template <class T>
struct std::hash<qn::Counted<T>> {
    std::size_t operator()(const qn::Counted<T>& object) const noexcept {
        return std::hash<T*>()(object.Get());
    }
};

#pragma once

#include "frame/host/counted.h"

#include <cstddef>
#include <functional>
#include <map>
#include <utility>

namespace qn::graph {

/// Order of counted objects by address; works on holders and plain pointers.
template <class T>
struct CountedLess {
    using is_transparent = void;
    static const T* Address(const Counted<T>& object) { return object.Get(); }
    static const T* Address(const T* object) { return object; }
    template <class A, class B>
    bool operator()(const A& left, const B& right) const {
        return std::less<const T*>()(Address(left), Address(right));
    }
};

/// Values by object, in address order. The objects are not counted: the entry of a dead one counts as absent,
/// and an entry for a new object at its address replaces it.
template <class T, class Value>
class WatchedMap {
public:
    /// The value, valid until the map changes, or null.
    Value* Find(const T* object) {
        const auto found = entries_.find(object);
        return found != entries_.end() && found->second.watch ? &found->second.value : nullptr;
    }
    const Value* Find(const T* object) const { return const_cast<WatchedMap*>(this)->Find(object); }
    bool Contains(const T* object) const { return Find(object) != nullptr; }
    /// The value of a living object, made if missing.
    Value& At(T* object) {
        Entry& entry = entries_[object];
        if (!entry.watch) entry = Entry{Weak<T>(object), Value()};
        return entry.value;
    }
    void Clear() { entries_.clear(); }
    /// Dead entries included.
    std::size_t Size() const { return entries_.size(); }
    bool IsEmpty() const { return entries_.empty(); }
    /// Live entries in address order: `visit(T*, Value&)`. The visitor must not change the map.
    template <class Visit>
    void ForEach(Visit&& visit) {
        for (auto& [address, entry] : entries_)
            if (T* object = entry.watch.Get()) visit(object, entry.value);
    }
    template <class Visit>
    void ForEach(Visit&& visit) const {
        for (const auto& [address, entry] : entries_)
            if (T* object = entry.watch.Get()) visit(object, entry.value);
    }

private:
    struct Entry {
        Weak<T> watch;
        Value value{};
    };
    std::map<const T*, Entry, std::less<const T*>> entries_;
};

}  // namespace qn::graph

#pragma once

#include "frame/host/scene.h"
#include "graph/instance_impl.h"
#include "graph/lookup_table_impl.h"
#include "graph/persistent_selector_impl.h"
#include "graph/reference_impl.h"

#include <initializer_list>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

namespace qn::test {

using namespace qn::graph;

inline Counted<ReferenceImpl> MakeReference(LookupTable* table = nullptr) {
    return Make<ReferenceImpl>(table);
}
inline Counted<InstanceImpl> MakeInstance(Reference* reference = nullptr) {
    return Make<InstanceImpl>(reference);
}

/// The instances become children of the definition, in order.
void AddChildren(Reference& parent, std::initializer_list<Instance*> children);

Selector PathOf(std::initializer_list<Instance*> elements);
Var IdsOf(std::initializer_list<const wchar_t*> ids);
/// A selector in stored form.
Counted<PersistentSelectorImpl> StoredIds(std::initializer_list<const wchar_t*> ids);
/// A selector in live form.
Counted<PersistentSelectorImpl> LivePath(std::initializer_list<Instance*> elements);
std::vector<Instance*> Targets(const PersistentSelectorImpl& selector);
/// Property 0x19 with these selectors at the heads of its entries.
Var LinksTo(std::initializer_list<Interface*> selectors);

/// An instance of a new definition of the table, with that local id.
Counted<InstanceImpl> Known(LookupTable& table, const wchar_t* id);

/// The element after a save and a load, with all that it reaches.
Counted<Interface> Reloaded(Interface& root);
template <class T>
Counted<T> ReloadedAs(T& root) {
    return CountedCast<T>(Reloaded(root));
}

/// A chain of definitions, each the only child of the one before; gives the first.
struct Chain {
    explicit Chain(int levels, LookupTable* table = nullptr);
    Counted<ReferenceImpl> root;
    std::vector<Counted<ReferenceImpl>> references;
    std::vector<Counted<InstanceImpl>> instances;  ///< one below each definition but the last
};

/// Levels that every walk has to manage.
inline constexpr int kDeep = 10'000;

/// Gives one object to whoever reads an object chunk.
class ObjectStream final : public Stream {
public:
    explicit ObjectStream(Interface* object) : object_(object) {}

    bool BeginChunk(unsigned) override { return false; }
    void EndChunk() override {}
    bool WriteData(const void*, int, int) override { return false; }
    bool WriteInt(int) override { return false; }
    bool WriteObjectChunk(Interface*, Context*, int) override { return false; }
    bool WriteObjectNumber(Interface*, Context*, bool) override { return false; }
    bool NextChunk() override { return false; }
    int GetChunkId() const override { return 0; }
    int ReadData(void*, int, int) override { return 0; }
    bool ReadInt(int&) override { return false; }
    std::size_t Remaining() const override { return 0; }
    Counted<Interface> ReadObject(Context*) override { return object_; }
    Counted<Interface> ReadObjectNumber(Context*) override { return object_; }
    bool Fail(const String&) override { return false; }
    bool HasFailed() const override { return false; }

private:
    Counted<Interface> object_;
};

}  // namespace qn::test

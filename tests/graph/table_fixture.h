#pragma once

#include "frame/host/scene.h"
#include "graph/instance_impl.h"
#include "graph/lookup_table_impl.h"
#include "graph/persistent_selector_impl.h"
#include "graph/reference_impl.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <vector>

namespace qn::test {

using namespace qn::graph;

/// A table and short words for what its tests do again and again.
class TableFixture : public testing::Test {
protected:
    /// An instance of a new reference of the table, with that local id, known to the table.
    Counted<InstanceImpl> Known(const wchar_t* id) {
        return CountedCast<InstanceImpl>(table->GetOrCreateReference(String())->CreateInstanceWithId(id));
    }
    static Selector PathOf(std::initializer_list<Instance*> elements) {
        Selector selector;
        for (Instance* element : elements)
            selector.AppendPathElement(element);
        return selector;
    }
    static Var Ids(std::initializer_list<const wchar_t*> ids) {
        Var path(VarArray::Create());
        for (const wchar_t* id : ids)
            path.ToArray()->Add(Var(id));
        return path;
    }
    static Var Attributes(PropEnum id, const Var& value) {
        Var attributes;
        attributes.At(Key(id)) = value;
        return attributes;
    }
    static std::vector<Interface*> Members(const Counted<InterfaceArray>& array) {
        std::vector<Interface*> members;
        for (int i = 0; array && i < array->GetCount(); ++i)
            members.push_back(array->Get(i));
        return members;
    }

    Counted<LookupTableImpl> table = Make<LookupTableImpl>();
};

/// A selector that property 9 or 0x19 of an element may hold.
inline Counted<PersistentSelectorImpl> StoredPath(std::initializer_list<Instance*> elements) {
    auto stored = Make<PersistentSelectorImpl>();
    for (Instance* element : elements)
        stored->path.emplace_back(element);
    return stored;
}

/// One entry list for property 0x19: arrays of selector and key.
inline Var LinkList(std::initializer_list<std::pair<Interface*, Var>> entries) {
    Var list(VarArray::Create());
    for (const auto& [link, key] : entries) {
        Var row(VarArray::Create(2));
        row.At(0) = Var(link, 1);
        row.At(1) = key;
        list.ToArray()->Add(row);
    }
    return list;
}

}  // namespace qn::test

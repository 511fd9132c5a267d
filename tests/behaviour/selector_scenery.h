#pragma once

#include "tests/behaviour/element_support.h"

#include <initializer_list>
#include <vector>

namespace qn::test {

using Path = std::vector<graph::Instance*>;

/// A table with instances "a" and "b", and the instance "at" that carries selectors.
struct Scenery {
    Counted<graph::LookupTable> table = NewTable();
    Counted<graph::Instance> at = EnterInstance(*table, L"at");
    Counted<graph::Instance> a = EnterInstance(*table, L"a");
    Counted<graph::Instance> b = EnterInstance(*table, L"b");

    Counted<graph::PersistentSelector> Ids(std::initializer_list<const wchar_t*> ids) const {
        return IdSelector(*table, IdPath(ids));
    }
};

}  // namespace qn::test

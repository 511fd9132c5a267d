#pragma once

#include "frame/host/counted.h"
#include "frame/host/var.h"

#include <unordered_map>
#include <vector>

namespace qn {

class Extension;
class Params;

/// Makes private copies of arrays and maps. What several places of a value share is shared by the same places
/// of the copy, rings included; texts, matrices and other objects stay shared with the original. Walks
/// without recursion.
class ValueCopier {
public:
    static constexpr int kDeepModes = 0x81;

    /// Any of the bits of `kDeepModes` copies nested containers too; else they stay shared.
    explicit ValueCopier(int mode = 1) : deep_((mode & kDeepModes) != 0) {}

    /// The copy of an array or map, counted even if the value only watches; any other value as it is.
    Var Copy(const Var& value);
    /// Null gives null.
    Counted<VarMap> CopyMap(const VarMap* map);
    Counted<VarArray> CopyArray(const VarArray* array);
    Counted<Params> CopyParams(const Params* params);

private:
    Var Nested(const Var& value);
    template <class Container>
    Counted<Container> Shell(const Container& source);
    void Finish();
    void Fill(VarMap& copy, const VarMap& source);
    void Fill(VarArray& copy, const VarArray& source);
    void Fill(Params& copy, const Params& source);
    void FillBase(Extension& copy, const Extension& source);

    struct Pending {
        const Extension* source;
        Extension* copy;
        void (ValueCopier::*fill)(Extension&, const Extension&);
    };
    template <class Container>
    void FillAs(Extension& copy, const Extension& source);

    bool deep_;
    std::unordered_map<const Interface*, Interface*> shells_;  // of those that more than one place holds
    std::vector<Pending> pending_;
};

}  // namespace qn

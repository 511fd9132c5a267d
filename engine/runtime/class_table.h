#pragma once

#include "frame/host/counted.h"

namespace qn {

/// Makes one object with its only count, or null without memory.
using ClassMaker = Interface* (*)();

/// One class of the engine that can be made by key.
struct ClassRow {
    const char* key;
    ClassMaker make;
};

template <class T>
Interface* MakeOf() {
    return Make<T>().Detach();
}

/// Adds a row behind the engine's own ones; a key that is there already keeps its first maker. The key must
/// outlive the process.
void AddEngineClass(const ClassRow& row);
/// The maker of one of the engine's own classes (keys ignore case), or null.
ClassMaker FindEngineClass(const char* key);
/// A new object of one of the engine's own classes (keys ignore case); null if there is no such class.
Counted<Interface> MakeEngineClass(const char* key);

}  // namespace qn

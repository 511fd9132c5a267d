#pragma once

#include "frame/host/counted.h"
#include "frame/host/result.h"

namespace qn {

class Context;
class Stream;

/// How streams keep a class that is no `ReferenceSource`, or that needs more than its own `Save` and `Load`.
struct ObjectWriter {
    const char* key;               ///< class key, constant text
    Counted<Interface> (*make)();  ///< a new object; null pointer: made by the class key like all others
    /// Both stand at the begin of the object's body and give kSuccess or a value below 1.
    ResultEnum (*save)(Interface& object, Stream* stream, Context* context);
    ResultEnum (*load)(Interface& object, Stream* stream, Context* context);
};

/// Adds a writer for the process; one of the same key is replaced.
void RegisterObjectWriter(const ObjectWriter& writer);
/// The writer of a class key (case does not count), or null.
const ObjectWriter* FindObjectWriter(const char* key);

}  // namespace qn

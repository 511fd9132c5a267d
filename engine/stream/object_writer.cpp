#include "frame/host/object_writer.h"

#include "engine/stream/builtin_writers.h"

#include <vector>

namespace qn {
namespace {

/// Few rows, looked at once for each object.
std::vector<ObjectWriter>& Writers() {
    static std::vector<ObjectWriter>& writers = *new std::vector<ObjectWriter>(BuiltinWriters());
    return writers;
}

ObjectWriter* Find(const char* key) {
    for (ObjectWriter& writer : Writers())
        if (EqualKeys(writer.key, key)) return &writer;
    return nullptr;
}

}  // namespace

void RegisterObjectWriter(const ObjectWriter& writer) {
    if (ObjectWriter* known = Find(writer.key))
        *known = writer;
    else
        Writers().push_back(writer);
}

const ObjectWriter* FindObjectWriter(const char* key) {
    return Find(key);
}

}  // namespace qn

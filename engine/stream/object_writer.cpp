#include "frame/host/object_writer.h"

#include "engine/stream/builtin_writers.h"

#include <deque>

namespace qn {
namespace {

/// Few rows, which keep their addresses.
std::deque<ObjectWriter>& Writers() {
    static const auto builtin = BuiltinWriters();
    static auto& writers = *new std::deque<ObjectWriter>(builtin.begin(), builtin.end());
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

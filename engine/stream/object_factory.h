#pragma once

#include "frame/host/object_writer.h"

#include <string>
#include <string_view>

namespace qn {

/// How to make the objects of one class of a file: by a registered writer, as one of the engine's own classes
/// or, through `api`, as a class of a module.
class ObjectFactory {
public:
    explicit ObjectFactory(std::string_view key);

    const std::string& GetKey() const { return key_; }
    /// A new object, or null: `IsUnknown` then tells whether the class or the memory is missing.
    Counted<Interface> Create();
    bool IsUnknown() const { return unknown_; }
    /// How to read an object that this made; null: it reads itself.
    const ObjectWriter* WriterFor(const Interface& object);

private:
    std::string key_;
    Counted<Interface> (*counted_)() = nullptr;
    Interface* (*owned_)() = nullptr;
    bool unknown_ = false;
    bool looked_ = false;
    const ObjectWriter* writer_ = nullptr;
};

/// The key under which an object is stored: its class key, but for classes whose objects cannot be turned
/// into each other after they were made.
const char* StoredKeyOf(const Interface& object);

}  // namespace qn

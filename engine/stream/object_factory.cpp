#include "engine/stream/object_factory.h"

#include "engine/runtime/class_table.h"
#include "frame/host/api.h"
#include "frame/host/collections.h"

namespace qn {
namespace {

constexpr const char* kArrayKey = "k3_interfacearray";
constexpr const char* kWeakArrayKey = "k3_interfacearray.weak";

Interface* MakeWeakArray() {
    return InterfaceArray::CreateWeak().Detach();
}

}  // namespace

ObjectFactory::ObjectFactory(std::string_view key) : key_(key) {
    if (const ObjectWriter* writer = FindObjectWriter(key_.c_str())) counted_ = writer->make;
    if (!counted_)
        owned_ = EqualKeys(key_.c_str(), kWeakArrayKey) ? &MakeWeakArray : FindEngineClass(key_.c_str());
}

Counted<Interface> ObjectFactory::Create() {
    if (counted_) return counted_();
    if (owned_) return Counted<Interface>::Adopt(owned_());
    Counted<Interface> object;
    if (api && !unknown_) object = api->Create(key_.c_str());
    unknown_ = !object;
    return object;
}

// All objects of a factory are of one class, so the first one answers for the others.
const ObjectWriter* ObjectFactory::WriterFor(const Interface& object) {
    if (!looked_) writer_ = FindObjectWriter(object.GetInterfaceName());
    looked_ = true;
    return writer_;
}

const char* StoredKeyOf(const Interface& object) {
    const char* key = object.GetInterfaceName();
    const auto* array = Cast<InterfaceArray>(&object);
    return array && !array->IsStrong() && EqualKeys(key, kArrayKey) ? kWeakArrayKey : key;
}

}  // namespace qn

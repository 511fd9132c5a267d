#include "engine/runtime/resources.h"

#include "engine/runtime/byte_stream.h"

#include <map>

namespace qn {
namespace {

using ResourceName = std::pair<ModuleHandle, String>;
using ResourceTable = std::map<ResourceName, std::shared_ptr<const std::string>>;

ResourceTable& Resources() {
    static auto& table = *new ResourceTable;
    return table;
}

}  // namespace

void RegisterResource(ModuleHandle handle, const wchar_t* name, std::string_view bytes) {
    Resources()[{handle, String(name)}] = std::make_shared<const std::string>(bytes);
}

bool RemoveResource(ModuleHandle handle, const String& name) {
    return Resources().erase({handle, name}) != 0;
}

Counted<Stream> Stream::Create(void* handle, const wchar_t* name, int) {
    if (!name) return {};
    if (!handle) return ByteStream::OpenFile(String(name));
    const auto found = Resources().find({handle, String(name)});
    return found == Resources().end() ? Counted<ByteStream>() : Make<ByteStream>(found->second);
}

}  // namespace qn

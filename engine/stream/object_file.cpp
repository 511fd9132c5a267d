#include "engine/stream/object_file.h"

#include "engine/stream/file_io.h"
#include "engine/stream/stream_reader.h"
#include "engine/stream/stream_writer.h"

#include <new>

namespace qn {
namespace {

constexpr const char* kMemoryName = "memory";

void FailWithoutMemory(const std::string& name, Context& context) {
    context.Fail(LoadFailure::kLimit, String::FromUtf8(name + ": memory is exhausted"));
}

}  // namespace

std::string WriteObjects(Interface& root, const std::string& name, Context& context, bool expandGenerated,
                         SaveReport* report) try {
    const auto writer = Make<StreamWriter>(name, context, expandGenerated);
    if (!writer) return FailWithoutMemory(name, context), std::string();
    auto bytes = writer->Write(root);
    if (report) *report = writer->GetReport();
    return bytes;
} catch (const std::bad_alloc&) {
    FailWithoutMemory(name, context);
    return {};
}

Counted<Interface> ReadObjects(std::string_view bytes, const std::string& name, Context& context,
                               Interface* root, LoadReport* report) try {
    const auto reader = Make<StreamReader>(name, bytes, context);
    if (!reader) return FailWithoutMemory(name, context), nullptr;
    if (root) reader->SetRoot(*root);
    const bool read = reader->Read();
    if (report) *report = reader->GetReport();
    return Counted<Interface>(read ? reader->GetRoot() : nullptr);
} catch (const std::bad_alloc&) {
    FailWithoutMemory(name, context);
    return {};
}

std::string SaveToBytes(Interface& root, Context& context) {
    return WriteObjects(root, kMemoryName, context, false);
}

Counted<Interface> LoadFromBytes(std::string_view bytes, Context& context, LoadReport* report) {
    return ReadObjects(bytes, kMemoryName, context, nullptr, report);
}

bool SaveObjectFile(Interface& root, const String& path, Context& context) {
    const std::string bytes = WriteObjects(root, path.ToUtf8(), context, false);
    return !bytes.empty() && WriteFileSafely(path, bytes, context);
}

Counted<Interface> LoadObjectFile(const String& path, Context& context, LoadReport* report) {
    std::string bytes;
    if (!ReadWholeFile(path, bytes, context)) return {};
    return ReadObjects(bytes, path.ToUtf8(), context, nullptr, report);
}

}  // namespace qn

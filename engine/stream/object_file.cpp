#include "engine/stream/object_file.h"

#include "engine/stream/file_io.h"
#include "engine/stream/stream_reader.h"
#include "engine/stream/stream_writer.h"

#include <new>

namespace qn {
namespace {

constexpr const char* kMemoryName = "memory";

std::string Save(Interface& root, const std::string& name, Context& context) try {
    const auto writer = Make<StreamWriter>(name, context, false);
    return writer ? writer->Write(root) : std::string();
} catch (const std::bad_alloc&) {
    context.Fail(LoadFailure::kLimit, String::FromUtf8(name + ": memory is exhausted"));
    return {};
}

Counted<Interface> Load(std::string_view bytes, const std::string& name, Context& context,
                        LoadReport* report) try {
    const auto reader = Make<StreamReader>(name, bytes, context);
    if (!reader || !reader->Read()) return {};
    if (report) *report = reader->GetReport();
    return Counted<Interface>(reader->GetRoot());
} catch (const std::bad_alloc&) {
    context.Fail(LoadFailure::kLimit, String::FromUtf8(name + ": memory is exhausted"));
    return {};
}

}  // namespace

std::string SaveToBytes(Interface& root, Context& context) {
    return Save(root, kMemoryName, context);
}

Counted<Interface> LoadFromBytes(std::string_view bytes, Context& context, LoadReport* report) {
    return Load(bytes, kMemoryName, context, report);
}

bool SaveObjectFile(Interface& root, const String& path, Context& context) {
    const std::string bytes = Save(root, path.ToUtf8(), context);
    return !bytes.empty() && WriteFileSafely(path, bytes, context);
}

Counted<Interface> LoadObjectFile(const String& path, Context& context, LoadReport* report) {
    std::string bytes;
    if (!ReadWholeFile(path, bytes, context)) return {};
    return Load(bytes, path.ToUtf8(), context, report);
}

}  // namespace qn

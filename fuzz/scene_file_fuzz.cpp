// Scene files: whatever the bytes are, they are refused or read, and what was read can be saved and read
// again.

#include "engine/runtime/context_impl.h"
#include "engine/stream/object_file.h"
#include "engine/stream/stream_reader.h"
#include "frame/host/reference_source.h"

#include <cstdio>
#include <cstdlib>

using namespace qn;

namespace {

void Demand(bool condition, const char* what) {
    if (condition) return;
    std::fprintf(stderr, "%s\n", what);
    std::abort();
}

std::string Again(Interface& root) {
    const auto context = Make<ContextImpl>();
    auto bytes = SaveToBytes(root, *context);
    Demand(!bytes.empty() || context->GetFailure() == LoadFailure::kLimit, "what was read cannot be saved");
    return bytes;
}

std::string ReadAndSave(const std::string& bytes) {
    const auto context = Make<ContextImpl>();
    const auto root = LoadFromBytes(bytes, *context);
    Demand(static_cast<bool>(root), context->GetFailureText().Utf8CStr());
    return Again(*root);
}

}  // namespace

// Rings of owners are legal in a file, and nobody takes them apart.
extern "C" const char* __asan_default_options() {
    return "detect_leaks=0";
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    const auto context = Make<ContextImpl>();
    const auto reader = Make<StreamReader>("fuzz", bytes, *context, false);
    if (!reader->Read()) {
        Demand(context->GetFailure() != LoadFailure::kNone, "refused without a cause");
        return 0;
    }
    const std::string first = Again(*reader->GetRoot());
    if (first.empty()) return 0;
    const std::string second = ReadAndSave(first);
    Demand(second == first, "saving what was saved gives other bytes");
    return 0;
}

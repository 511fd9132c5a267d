#include "exchange/file_access.h"

#include "engine/runtime/context_impl.h"
#include "engine/stream/file_io.h"
#include "exchange/limits.h"

#include <filesystem>

namespace qn::exchange {

namespace fs = std::filesystem;

Counted<Context> UsedContext(Context* context) {
    return context ? Counted<Context>(context) : Counted<Context>(Make<ContextImpl>());
}

bool MakeFolder(const String& folder, Context& context) {
    const fs::path path = folder.ToUtf8();
    std::error_code error;
    if (path.empty() || fs::is_directory(path, error)) return true;
    fs::create_directories(path, error);
    std::error_code unknown;
    if (!error || fs::is_directory(path, unknown)) return true;
    context.Fail(LoadFailure::kNotWritten,
                 folder + L": the folder cannot be made: " + String::FromUtf8(error.message()));
    return false;
}

bool ReadInput(const String& file, std::string& bytes, Context& context) {
    std::error_code error;
    const std::uintmax_t size = fs::file_size(file.ToUtf8(), error);
    if (error || size <= exchange_limits::kLargestFile) return ReadWholeFile(file, bytes, context);
    String reason;
    reason.Format(L": larger than %lld bytes", static_cast<long long>(exchange_limits::kLargestFile));
    context.Fail(LoadFailure::kLimit, file + reason);
    return false;
}

bool WriteOutput(const String& file, std::string_view bytes, Context& context) {
    const fs::path folder = fs::path(file.ToUtf8()).parent_path();
    return MakeFolder(String::FromUtf8(folder.string()), context) && WriteFileSafely(file, bytes, context);
}

bool EndsWith(const String& file, std::string_view ending) {
    const std::string name = file.ToUtf8();
    return name.size() > ending.size() &&
           EqualKeys(name.c_str() + (name.size() - ending.size()), std::string(ending).c_str());
}

}  // namespace qn::exchange

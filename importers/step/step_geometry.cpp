#include "importers/step/step_geometry.h"

#include "importers/step/geometry_entry.h"

#include <dlfcn.h>
#include <algorithm>
#include <filesystem>

namespace qn::step {
namespace {

namespace fs = std::filesystem;

struct Library {
    GeometryEntry entry = nullptr;
    std::string error;
};

/// The folder of the library or program that this code is in. A program goes by the name that it was called
/// by, which may start in the working folder.
fs::path OwnFolder() {
    Dl_info info{};
    const auto* here = reinterpret_cast<const void*>(&OwnFolder);
    if (!::dladdr(here, &info) || !info.dli_fname) return {};
    std::error_code error;
    const fs::path folder = fs::canonical(fs::absolute(info.dli_fname, error).parent_path(), error);
    return error ? fs::path() : folder;
}

/// Beside this code, or in the folder of libraries if this is a program.
fs::path LibraryPath() {
    const fs::path beside = OwnFolder() / kGeometryLibrary;
    std::error_code ignored;
    return fs::exists(beside, ignored) ? beside : OwnFolder().parent_path() / "lib" / kGeometryLibrary;
}

Library Load() {
    Library library;
    void* handle = ::dlopen(LibraryPath().c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle) library.entry = reinterpret_cast<GeometryEntry>(::dlsym(handle, kGeometryEntry));
    if (library.entry) return library;
    const char* cause = ::dlerror();
    library.error = cause ? cause : "unknown cause";
    return library;
}

bool HasShapes(const StepModel& model) {
    return std::any_of(model.definitions.begin(), model.definitions.end(),
                       [](const Definition& definition) { return definition.HasOwnGeometry(); });
}

}  // namespace

GeometryResult ReadGeometry(const StructureResult& structure, const Tessellation& tessellation,
                            const MeshSink& take, const ProgressSink& progress) {
    GeometryResult result;
    if (!structure.file || !HasShapes(structure.model)) return result;
    static const Library library = Load();  // it stays until the end: the kernel cannot be unloaded
    if (library.entry) {
        library.entry(structure, tessellation, take, progress, result);
    } else {
        result.cause = Cause::kDefect;
        result.error = structure.name + ": geometry cannot be read: " + library.error;
    }
    return result;
}

}  // namespace qn::step

#include "importers/step/step_structure.h"

#include "importers/step/step_documents.h"
#include "importers/step/step_products.h"
#include "importers/step/step_properties.h"
#include "importers/step/step_shapes.h"

#include <exception>
#include <fstream>
#include <new>
#include <system_error>
#include <utility>

namespace qn::step {
namespace {

std::string ReadBytes(const std::filesystem::path& path) {
    std::error_code error;
    const auto size = std::filesystem::file_size(path, error);
    if (error) throw ReadFailure(error.message(), Cause::kUnreadable);
    std::ifstream in(path, std::ios::binary);
    if (!in) throw ReadFailure("the file cannot be opened", Cause::kUnreadable);
    std::string bytes(size, '\0');
    in.read(bytes.data(), static_cast<std::streamsize>(size));
    if (in.bad()) throw ReadFailure("the file cannot be read", Cause::kUnreadable);
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return bytes;
}

StructureResult ReadModel(std::string bytes, const Poll& poll) {
    StructureResult result;
    result.file = std::make_shared<const ExchangeFile>(std::move(bytes), poll);
    const ExchangeFile& file = *result.file;
    StepModel& model = result.model;
    model.schemas = file.Schemas();
    model.warnings = file.Warnings();
    Check(poll);
    const StructureIndex index = ReadProducts(file, model);
    if (model.definitions.empty()) throw ReadFailure("the file holds no product definition");
    Check(poll);
    ReadShapes(file, index, model);
    Check(poll);
    ReadProperties(file, index, model);
    ReadDocuments(file, index, model);
    Check(poll);
    result.colours = ReadColours(file);
    ApplyColours(result.colours, model);
    return result;
}

/// Runs `read` and turns whatever it throws into an error that names the file.
template <class Read>
StructureResult Guarded(const std::string& name, Read&& read) {
    StructureResult failed;
    const auto fail = [&](Cause cause, const std::string& text) {
        failed.name = name;
        failed.cause = cause;
        failed.error = name + ": " + text;
        return failed;
    };
    try {
        StructureResult result = read();
        result.name = name;
        return result;
    } catch (const ReadFailure& failure) {
        return fail(failure.GetCause(), failure.what());
    } catch (const std::bad_alloc&) {
        return fail(Cause::kMemory, "not enough memory");
    } catch (const std::exception& failure) {
        return fail(Cause::kMalformed, failure.what());
    }
}

}  // namespace

StructureResult ReadStructure(const std::filesystem::path& path, const Poll& poll) {
    return Guarded(path.string(), [&] { return ReadModel(ReadBytes(path), poll); });
}

StructureResult ReadStructure(std::string bytes, const std::string& name, const Poll& poll) {
    return Guarded(name, [&] { return ReadModel(std::move(bytes), poll); });
}

}  // namespace qn::step

#pragma once

#include "importers/step/part21_error.h"
#include "importers/step/part21_file.h"
#include "importers/step/step_colours.h"
#include "importers/step/step_model.h"

#include <filesystem>
#include <memory>
#include <string>

namespace qn::step {

/// What was read, or why nothing was.
struct StructureResult {
    StepModel model;
    ColourTable colours;
    /// The file's text, for whoever reads geometry next; null after an error.
    std::shared_ptr<const ExchangeFile> file;
    std::string name;   ///< what errors call the file
    std::string error;  ///< empty if all went well, else the file's name and the cause
    Cause cause = Cause::kNone;

    bool Ok() const { return error.empty(); }
};

/// Reads the product structure of a STEP file: no geometry is built, no other file is opened.
/// The time is linear in the size of the file. Throws nothing.
StructureResult ReadStructure(const std::filesystem::path& path, const Poll& poll = nullptr);

/// The same from the bytes of a file. `name` is what errors call it.
StructureResult ReadStructure(std::string bytes, const std::string& name, const Poll& poll = nullptr);

}  // namespace qn::step

#pragma once

#include "engine/stream/scene_file.h"
#include "tool/session.h"

#include <CLI/CLI.hpp>

#include <string>

namespace assembly::tool {

/// Where a verb that changes a scene writes it.
struct SaveTarget {
    std::string output;
    bool inPlace = false;
};

/// Adds "-o, --output FILE" and "--in-place", which exclude each other.
void AddSaveOptions(CLI::App& verb, SaveTarget& target);

/// The file to write, or nothing. Fails with kUsage if it is no scene file, with kNotWritten if its folder
/// does not exist.
std::string PathOf(const SaveTarget& target, const std::string& input);

/// Writes the scene of the file `input`; names of other files lead where they led
/// there. Fails as `SaveTo`, with kNotWritten also if no name leads there.
void SaveChanged(const std::string& path, const std::string& input, qn::k3::Scene& scene, Session& session);

/// Writes the scene as it is. Fails with kNotWritten, kLimit or kCancelled; an old file is then as it was.
void SaveTo(const std::string& path, qn::k3::Scene& scene, Session& session,
            const qn::SceneSaveOptions& options = {});

}  // namespace assembly::tool

#pragma once

#include <CLI/CLI.hpp>

namespace assembly::tool {

/// Each adds its verb with its options; the verb runs when its options were read, and throws `Failure`.
void AddShow(CLI::App& app);
void AddStats(CLI::App& app);
void AddConvert(CLI::App& app);
void AddCheck(CLI::App& app);
void AddRepair(CLI::App& app);
void AddDeps(CLI::App& app);
void AddParts(CLI::App& app);
void AddBom(CLI::App& app);
void AddEffectivity(CLI::App& app);
void AddOps(CLI::App& app);
void AddRun(CLI::App& app);
void AddModule(CLI::App& app);
void AddLimits(CLI::App& app);

}  // namespace assembly::tool

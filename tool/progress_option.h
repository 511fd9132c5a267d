#pragma once

#include "tool/session.h"

#include <CLI/CLI.hpp>

namespace assembly::tool {

/// Adds "--progress auto|none|json", written to `style` when the words are read.
void AddProgressOption(CLI::App& verb, ProgressStyle& style);

}  // namespace assembly::tool

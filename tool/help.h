#pragma once

#include <CLI/CLI.hpp>

namespace assembly::tool {

/// Lists each verb with the first sentence of its purpose; examples and details stand in the verb's own help.
class HelpFormatter : public CLI::Formatter {
public:
    HelpFormatter();

    std::string make_subcommand(const CLI::App* verb) const override;
};

}  // namespace assembly::tool

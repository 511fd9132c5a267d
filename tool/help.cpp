#include "tool/help.h"

#include <algorithm>
#include <iomanip>
#include <sstream>
#include <string>

namespace assembly::tool {
namespace {

constexpr std::size_t kNameColumn = 15;

/// A description is examples, an empty line, then what the verb does.
std::string FirstClause(const std::string& description) {
    const std::size_t examples =
        description.rfind("Examples:", 0) == 0 ? description.find("\n\n") : std::string::npos;
    std::string text = examples == std::string::npos ? description : description.substr(examples + 2);
    std::replace(text.begin(), text.end(), '\n', ' ');
    std::size_t end = text.size();
    for (const char* stop : {". ", ": ", "; "})
        end = std::min(end, text.find(stop));
    text.resize(end);
    return text.back() == '.' ? text : text + ".";
}

}  // namespace

HelpFormatter::HelpFormatter() {
    column_width(kNameColumn);
}

std::string HelpFormatter::make_subcommand(const CLI::App* verb) const {
    std::ostringstream line;
    line << "  " << std::left << std::setw(kNameColumn - 2) << verb->get_name()
         << FirstClause(verb->get_description()) << '\n';
    return line.str();
}

}  // namespace assembly::tool

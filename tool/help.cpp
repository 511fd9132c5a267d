#include "tool/help.h"

#include <algorithm>
#include <iomanip>
#include <sstream>
#include <string>

namespace assembly::tool {
namespace {

constexpr std::size_t kNameColumn = 15;

/// A description is examples, an empty line, then what the verb does.
std::string FirstSentence(const std::string& description) {
    const std::size_t examples = description.rfind("Examples:", 0) == 0 ? description.find("\n\n") : std::string::npos;
    std::string text = examples == std::string::npos ? description : description.substr(examples + 2);
    std::replace(text.begin(), text.end(), '\n', ' ');
    const std::size_t end = text.find(". ");
    return end == std::string::npos ? text : text.substr(0, end + 1);
}

}  // namespace

HelpFormatter::HelpFormatter() { column_width(kNameColumn); }

std::string HelpFormatter::make_subcommand(const CLI::App* verb) const {
    std::ostringstream line;
    line << "  " << std::left << std::setw(kNameColumn - 2) << verb->get_name()
         << FirstSentence(verb->get_description()) << '\n';
    return line.str();
}

}  // namespace assembly::tool

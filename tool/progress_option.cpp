#include "tool/progress_option.h"

#include <map>
#include <string>

namespace assembly::tool {

void AddProgressOption(CLI::App& verb, ProgressStyle& style) {
    static const std::map<std::string, ProgressStyle> kStyles{
        {"auto", ProgressStyle::kAuto}, {"none", ProgressStyle::kNone}, {"json", ProgressStyle::kJson}};
    verb.add_option_function<std::string>(
            "--progress", [&style](const std::string& word) { style = kStyles.at(word); },
            "auto, none or json (on stderr)")
        ->check(CLI::IsMember({"auto", "none", "json"}));
}

}  // namespace assembly::tool

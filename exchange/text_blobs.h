#pragma once

#include "frame/host/context.h"

#include <map>
#include <string>

namespace qn::exchange {

/// Long texts on their way to files of one folder. A file is named by its content, so that equal texts are
/// one file and a further export writes the same names.
class TextBlobs {
public:
    /// Longer texts, in bytes of UTF-8, become files.
    static constexpr std::size_t kLongestInline = 256;

    explicit TextBlobs(const String& folder) : folder_(folder) {}

    /// The name, without folder, of the file that will hold the text.
    std::string Add(const std::string& utf8);
    /// Makes the folder and writes what is not there yet. False with the cause in the context.
    bool Write(Context& context) const;

private:
    String folder_;
    std::map<std::string, std::string> files_;  // name to content
};

}  // namespace qn::exchange

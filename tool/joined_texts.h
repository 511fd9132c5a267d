#pragma once

#include <string>
#include <string_view>
#include <unordered_set>

namespace assembly::tool {

/// Collects texts: each once, none empty, in the order of their coming, joined with ", ".
class JoinedTexts {
public:
    void Add(const std::string& text) {
        if (text.empty() || !met_.insert(text).second) return;
        if (!joined_.empty()) joined_ += ", ";
        joined_ += text;
    }
    const std::string& Text() const { return joined_; }
    std::size_t Count() const { return met_.size(); }

private:
    std::string joined_;
    std::unordered_set<std::string> met_;
};

}  // namespace assembly::tool

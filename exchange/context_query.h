#pragma once

#include "frame/host/var.h"

#include <string>
#include <string_view>
#include <vector>

namespace qn::exchange {

/// Which part of a file is wanted: occurrences by the server id that stands on their scene nodes, and
/// instances by their server id (of "a/b|c" only "c" counts). In the order of the file, without doubles.
struct ContextQuery {
    std::vector<String> paths;
    std::vector<String> ids;

    bool IsEmpty() const { return paths.empty() && ids.empty(); }
};

/// Why a text was refused.
struct ReadProblem {
    String reason;
    bool isLimit = false;
};

/// Whether the files of this folder can hold the text as an id: it is not empty, not longer than the limit
/// and has no control characters.
bool IsStorableId(const String& text);

/// Reads the XML text of a query. False, and the query empty, if it cannot be used.
bool ParseContextQuery(std::string_view text, ContextQuery& query, ReadProblem& problem);
/// The XML text of a query, UTF-8. Expects storable ids.
std::string FormatContextQuery(const ContextQuery& query);

/// The value of context parameter 0xa7: 0 a map of paths, 1 a map of ids.
Var FilterOf(const ContextQuery& query);

}  // namespace qn::exchange

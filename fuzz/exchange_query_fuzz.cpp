// Queries of any kind: one that is read can be written and read again, and is then the same.

#include "exchange/context_query.h"

#include <cstdint>
#include <cstdlib>

namespace {

using qn::exchange::ContextQuery;
using qn::exchange::ParseContextQuery;
using qn::exchange::ReadProblem;

void CheckRoundTrip(const ContextQuery& query) {
    const std::string text = FormatContextQuery(query);
    ContextQuery again;
    ReadProblem problem;
    if (!ParseContextQuery(text, again, problem) || FormatContextQuery(again) != text) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    ContextQuery query;
    ReadProblem problem;
    if (ParseContextQuery({reinterpret_cast<const char*>(data), size}, query, problem)) {
        CheckRoundTrip(query);
        (void)qn::exchange::FilterOf(query);
    } else if (!query.IsEmpty() || problem.reason.IsEmpty()) {
        std::abort();
    }
    return 0;
}

#pragma once

#include "frame/host/params.h"

#include <string>
#include <vector>

namespace qn::test {

/// What one stored call did to a probe.
struct ProbedCall {
    std::string key;  ///< of the class that was run
    int method = 0;
    Counted<Params> arguments;
    Context* context = nullptr;  ///< borrowed
    unsigned queryMask = 0;
    bool queriedADocument = false;
};

/// Registers two classes, "test.probe.a" and "test.probe.b", that describe themselves with a text of the test
/// and note their calls, and "test.probe.nothing", which is no `Extension`. One at a time.
class CallProbes {
public:
    static constexpr const char* kA = "test.probe.a";
    static constexpr const char* kB = "test.probe.b";
    static constexpr const char* kNothing = "test.probe.nothing";

    /// `description` is the XML of the document; the empty text leaves the document as it is.
    explicit CallProbes(std::string description = {});
    ~CallProbes();
    CallProbes(const CallProbes&) = delete;
    CallProbes& operator=(const CallProbes&) = delete;

    const std::vector<ProbedCall>& Calls() const;
    /// The methods that were called, in order.
    std::vector<int> Methods() const;
};

/// A description with one method of id 7 that has these "Parameter" elements.
std::string DescriptionOf(const std::string& parameters);

}  // namespace qn::test

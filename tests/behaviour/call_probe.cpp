#include "tests/behaviour/call_probe.h"

#include "engine/runtime/byte_stream.h"
#include "engine/runtime/class_table.h"
#include "frame/host/xml.h"

namespace qn::test {
namespace {

struct Notes {
    std::string description;
    std::vector<ProbedCall> calls;
};
Notes g_notes;

class Probe final : public Extension {
public:
    explicit Probe(const char* key) : key_(key) {}

    ResultEnum QueryInfo(xml::Element* document, unsigned mask) override {
        mask_ = mask;
        isDocument_ = document && EqualKeys(document->GetInterfaceName(), "qnxmldocument");
        if (g_notes.description.empty()) return ResultEnum::kNothing;
        return document->LoadFromStream(ByteStream::FromBytes(g_notes.description).Get());
    }
    int Invoke(int method, Params* arguments, Context* context) override {
        g_notes.calls.push_back({key_, method, Counted<Params>(arguments), context, mask_, isDocument_});
        return -1;  // whatever it says, the next one follows
    }

private:
    const char* key_;
    unsigned mask_ = 0;
    bool isDocument_ = false;
};

class Nothing final : public Interface {};

}  // namespace

CallProbes::CallProbes(std::string description) {
    g_notes = {std::move(description), {}};
    AddEngineClass({kA, []() -> Interface* { return Make<Probe>(kA).Detach(); }});
    AddEngineClass({kB, []() -> Interface* { return Make<Probe>(kB).Detach(); }});
    AddEngineClass({kNothing, []() -> Interface* { return Make<Nothing>().Detach(); }});
}

CallProbes::~CallProbes() {
    g_notes = {};
}

const std::vector<ProbedCall>& CallProbes::Calls() const {
    return g_notes.calls;
}

std::vector<int> CallProbes::Methods() const {
    std::vector<int> methods;
    for (const ProbedCall& call : g_notes.calls)
        methods.push_back(call.method);
    return methods;
}

std::string DescriptionOf(const std::string& parameters) {
    return "<Interface><Methods><Method id=\"7\" name=\"seven\">" + parameters +
           "</Method></Methods></Interface>";
}

}  // namespace qn::test

// What the generator has its root definition do.

#include "construction/hierarchy_generator.h"
#include "frame/host/params.h"
#include "graph/post_processing_instruction.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/factory_support.h"
#include "tests/behaviour/recording_api.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

/// car(wheel) in a table; the wheel carries a stored selector with a live path.
struct Garage {
    Garage() {
        car->GetReference()->AddChild(wheel.Get());
        SetSelectors(*wheel, {stored.Get()});
    }

    Counted<LookupTable> table = NewTable();
    Counted<Instance> car = EnterInstance(*table, L"car");
    Counted<Instance> wheel = EnterInstance(*table, L"wheel");
    Counted<PersistentSelector> stored = LiveSelector({car.Get(), wheel.Get()});
    Counted<HierarchyGenerator> generator = CreateAs<HierarchyGenerator>(ClassKey::kHierarchyGenerator);
    Counted<k3::Scene> scene = Make<k3::Scene>();
    k3::Node* node = AddNode(*scene, L"node");
};

TEST(GeneratorServices, DoNothingWithoutDefinition) {
    const Garage g;
    g.generator->StoreReferenceSelectors();
    g.generator->ResolveReferenceSelectors();
    g.generator->RunReferenceInstructions();
    EXPECT_EQ(LivePath(*g.stored), (std::vector<Instance*>{g.car.Get(), g.wheel.Get()}));
}

TEST(GeneratorServices, StoreAndResolveTheSelectorsBelowTheRoot) {
    const Garage g;
    g.generator->SetSelector(PathOf({g.car.Get()}));
    g.generator->StoreReferenceSelectors();
    const auto other = EnterInstance(*g.table, L"wheel");  // takes the id over
    g.generator->ResolveReferenceSelectors();
    EXPECT_EQ(LivePath(*g.stored), (std::vector<Instance*>{g.car.Get(), other.Get()}));
}

TEST(GeneratorServices, ResolveNothingThatWasNotStored) {
    const Garage g;
    g.generator->SetSelector(PathOf({g.car.Get()}));
    const auto other = EnterInstance(*g.table, L"wheel");
    g.generator->ResolveReferenceSelectors();
    EXPECT_EQ(LivePath(*g.stored), (std::vector<Instance*>{g.car.Get(), g.wheel.Get()}));
}

TEST(GeneratorServices, LosePathsOfUnknownIds) {
    const Garage g;
    g.wheel->SetProperty(Prop::kLocalId, Var(L"unknown"));
    g.generator->SetSelector(PathOf({g.car.Get()}));
    g.generator->StoreReferenceSelectors();
    g.generator->ResolveReferenceSelectors();
    EXPECT_TRUE(LivePath(*g.stored).empty());
}

/// A class whose calls are remembered.
class Called final : public Extension {
public:
    struct Call {
        int method;
        Interface* target;
        Context* context;
    };
    explicit Called(std::vector<Call>& calls) : calls_(&calls) {}
    int Invoke(int method, Params* arguments, Context* context) override {
        calls_->push_back({method, arguments->GetParamObject(Param::kCallTarget), context});
        return 0;
    }

private:
    std::vector<Call>* calls_;
};

struct Calls {
    Calls() {
        api.makers["test.called"] = [this] { return Counted<Interface>(Make<Called>(seen)); };
    }
    void Instruct(Reference& reference, int method) const {
        const auto instruction = reference.AddInstruction();
        instruction->SetCommandKey(L"test.called");
        instruction->SetMethodId(method);
    }

    RecordingApi api;
    std::vector<Called::Call> seen;
};

TEST(GeneratorServices, RunTheStoredCallsOnTheNodeThatWasMade) {
    const Garage g;
    Calls calls;
    const auto context = MakeContext();
    calls.Instruct(*g.car->GetReference(), 7);
    calls.Instruct(*g.wheel->GetReference(), 8);
    g.generator->SetSelector(PathOf({g.car.Get()}));
    g.generator->Generate(g.node, context.Get());
    EXPECT_TRUE(calls.seen.empty()) << "making nodes runs nothing";
    g.generator->RunReferenceInstructions();
    ASSERT_EQ(calls.seen.size(), 2u);
    EXPECT_EQ(calls.seen[0].method, 8) << "parts first";
    EXPECT_EQ(calls.seen[1].method, 7);
    for (const Called::Call& call : calls.seen) {
        EXPECT_EQ(call.target, g.node);
        EXPECT_EQ(call.context, context.Get());
    }
}

TEST(GeneratorServices, RunNothingWithoutNodeOrContext) {
    const Garage g;
    Calls calls;
    calls.Instruct(*g.car->GetReference(), 7);
    g.generator->SetSelector(PathOf({g.car.Get()}));
    g.generator->RunReferenceInstructions();
    EXPECT_TRUE(calls.seen.empty());

    const auto context = MakeContext();
    g.generator->Generate(g.node, context.Get());
    g.node->Remove(0);
    g.generator->RunReferenceInstructions();
    EXPECT_TRUE(calls.seen.empty()) << "the node is gone";
}

}  // namespace
}  // namespace qn::test

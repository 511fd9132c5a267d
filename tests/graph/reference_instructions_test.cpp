#include "engine/runtime/byte_stream.h"
#include "frame/host/memory.h"
#include "frame/host/params.h"
#include "frame/host/xml.h"
#include "graph/post_processing_instruction.h"
#include "tests/graph/graph_support.h"
#include "tests/support/recording_context.h"
#include "tests/support/static_module.h"

namespace qn::test {

namespace {

constexpr const char* kDescription =
    "<Interface><Methods>"
    "<Other/>"
    "<Method id='7' name='first'>"
    "<Parameter id='1' name='a' type='string'/>"
    "<Parameter id='2' name='b' type='int' default='7'/>"
    "<Parameter id='3' name='c' type='bool'/>"
    "<Parameter id='4' name='d' type='filename'/>"
    "<Parameter id='5' name='e' type='scene'/>"
    "<Parameter id='6' name='f' type='matrix' default='x'/>"
    "<Parameter id='8' name='g' type='String' default='x'/>"
    "<Parameter id='9' type='string' default='x'/>"
    "<Parameter name='h' type='string' default='x'/>"
    "<Parameter id='10' name='i' default='x'/>"
    "<Result type='bool' id='11' name='j' default='x'/>"
    "</Method>"
    "<Method id='7' name='second'><Parameter id='12' name='k' type='string' default='x'/></Method>"
    "</Methods></Interface>";

/// A class whose calls are written down.
class Recorder final : public Extension {
public:
    struct Call {
        int method;
        Counted<Params> arguments;
        Context* context;
    };
    static inline std::vector<Call> calls;
    static inline std::string description = kDescription;

    ResultEnum QueryInfo(xml::Element* document, unsigned mask) override {
        EXPECT_EQ(mask, 0xffu);
        return description.empty() ? ResultEnum::kNothing
                                   : document->LoadFromStream(ByteStream::FromBytes(description).Get());
    }
    int Invoke(int method, Params* arguments, Context* context) override {
        calls.push_back({method, Counted<Params>(arguments), context});
        return 0;
    }
};

class ReferenceInstructions : public testing::Test {
protected:
    ReferenceInstructions() {
        Recorder::calls.clear();
        Recorder::description = kDescription;
    }
    ~ReferenceInstructions() override { Recorder::calls.clear(); }

    static Counted<Reference::PostProcessingInstruction> Call(Reference& reference, const wchar_t* key,
                                                              int method = 7) {
        auto instruction = reference.AddInstruction();
        instruction->SetCommandKey(key);
        instruction->SetMethodId(method);
        return instruction;
    }
    Params& RunOnce() {
        car->RunInstructions(target.Get(), context.Get());
        EXPECT_EQ(Recorder::calls.size(), 1u);
        return *Recorder::calls.at(0).arguments;
    }
    static std::vector<int> Methods() {
        std::vector<int> methods;
        for (const auto& call : Recorder::calls)
            methods.push_back(call.method);
        return methods;
    }

    const StaticModule module_{{{"test.recorder", &MakeOf<Recorder>}}};
    Counted<ReferenceImpl> car = MakeReference();
    Counted<Extension> target = Make<Extension>();
    Counted<RecordingContext> context = MakeContext();
};

}  // namespace

TEST_F(ReferenceInstructions, AreListedInOrder) {
    EXPECT_EQ(car->GetInstructionCount(), 0);
    EXPECT_FALSE(car->GetInstruction(0));
    car->RemoveInstruction(0);
    const auto first = Call(*car, L"a");
    const auto second = Call(*car, L"b");
    EXPECT_EQ(car->GetInstructionCount(), 2);
    EXPECT_EQ(car->GetInstruction(1), second.Get());
    car->RemoveInstruction(0);
    EXPECT_EQ(car->GetInstruction(0), second.Get());
    EXPECT_FALSE(car->GetInstruction(1));
}

TEST_F(ReferenceInstructions, RunOnlyWithTargetAndContext) {
    Call(*car, L"test.recorder");
    car->RunInstructions(nullptr, context.Get());
    car->RunInstructions(target.Get(), nullptr);
    car->RunAllInstructions(nullptr, context.Get());
    car->RunAllInstructions(target.Get(), nullptr);
    EXPECT_TRUE(Recorder::calls.empty());
}

TEST_F(ReferenceInstructions, CallTheMethodWithTargetAndContext) {
    Call(*car, L"test.recorder");
    EXPECT_EQ(RunOnce().GetParamObject(0x9d), target.Get());
    EXPECT_EQ(Recorder::calls[0].method, 7);
    EXPECT_EQ(Recorder::calls[0].context, context.Get());
}

TEST_F(ReferenceInstructions, AClassThatCannotBeMadeIsSkippedWithoutAWord) {
    Call(*car, L"test.nothing");
    Call(*car, L"test.recorder", 8);
    car->RunInstructions(target.Get(), context.Get());
    EXPECT_EQ(Methods(), std::vector<int>{8});
    EXPECT_TRUE(context->Texts().empty());
}

TEST_F(ReferenceInstructions, ArgumentsAreTakenByTheDescription) {
    const auto call = Call(*car, L"test.recorder");
    call->SetArgument(1, Var(L"text"));
    call->SetArgument(2, Var(5));
    call->SetArgument(3, Var(true));
    call->SetArgument(4, Var(L"a.stp"));
    call->SetArgument(20, Var(L"unknown"));
    const Params& arguments = RunOnce();
    EXPECT_EQ(arguments.GetParamVar(1), Var(L"text"));
    EXPECT_EQ(arguments.GetParamVar(2), Var(5));
    EXPECT_EQ(arguments.GetParamVar(3), Var(true));
    EXPECT_EQ(arguments.GetParamVar(4), Var(L"a.stp"));
    EXPECT_TRUE(arguments.GetParamVar(20).IsEmpty());
}

TEST_F(ReferenceInstructions, ADefaultStaysAText) {
    Call(*car, L"test.recorder");
    EXPECT_EQ(RunOnce().GetParamVar(2), Var(L"7"));
}

TEST_F(ReferenceInstructions, WithoutValueAndDefaultAnArgumentStaysEmpty) {
    Call(*car, L"test.recorder");
    EXPECT_TRUE(RunOnce().GetParamVar(1).IsEmpty());
}

TEST_F(ReferenceInstructions, UnknownTypesAndIncompleteParametersAreLeftOut) {
    Call(*car, L"test.recorder");
    const Params& arguments = RunOnce();
    for (const int id : {0, 6, 8, 9, 10, 11})
        EXPECT_TRUE(arguments.GetParamVar(id).IsEmpty()) << id;
}

TEST_F(ReferenceInstructions, OnlyTheFirstMethodOfAnIdCounts) {
    Call(*car, L"test.recorder");
    EXPECT_TRUE(RunOnce().GetParamVar(12).IsEmpty());
}

TEST_F(ReferenceInstructions, ASceneParameterGetsTheTablesScene) {
    const auto scene = Make<k3::Scene>();
    const auto table = Make<LookupTableImpl>();
    table->SetSceneAndContext(scene.Get(), context.Get());
    car->RegisterInTable(table.Get());
    Call(*car, L"test.recorder");
    EXPECT_EQ(RunOnce().GetParamObject(5), scene.Get());
}

TEST_F(ReferenceInstructions, WithoutTableThereIsNoScene) {
    Call(*car, L"test.recorder");
    EXPECT_EQ(RunOnce().GetParamObject(5), nullptr);
}

TEST_F(ReferenceInstructions, WithoutDescriptionTheCallStillRuns) {
    for (const char* description :
         {"", "<Interface/>", "<Other><Methods/></Other>", "<Interface><Methods/></Interface>"}) {
        Recorder::description = description;
        const auto part = MakeReference();
        Call(*part, L"test.recorder")->SetArgument(1, Var(L"text"));
        part->RunInstructions(target.Get(), context.Get());
        ASSERT_EQ(Recorder::calls.size(), 1u) << description;
        EXPECT_TRUE(Recorder::calls[0].arguments->GetParamVar(1).IsEmpty());
        Recorder::calls.clear();
    }
}

TEST_F(ReferenceInstructions, ChildrenRunFirst) {
    const auto door = MakeReference();
    const auto lock = MakeReference();
    car->AddChild(MakeInstance(door.Get()).Get());
    door->AddChild(MakeInstance(lock.Get()).Get());
    Call(*car, L"test.recorder", 1);
    Call(*door, L"test.recorder", 2);
    Call(*lock, L"test.recorder", 3);
    car->RunAllInstructions(target.Get(), context.Get());
    EXPECT_EQ(Methods(), (std::vector<int>{3, 2, 1}));
}

TEST_F(ReferenceInstructions, ASharedDefinitionRunsOnce) {
    const auto door = MakeReference();
    AddChildren(*car, {MakeInstance(door.Get()).Get(), MakeInstance(door.Get()).Get(), MakeInstance().Get()});
    Call(*door, L"test.recorder", 2);
    car->RunAllInstructions(target.Get(), context.Get());
    EXPECT_EQ(Methods(), std::vector<int>{2});
}

TEST_F(ReferenceInstructions, TheRootRunsAlsoWhenItWasVisited) {
    const auto door = MakeReference();
    car->AddChild(MakeInstance(door.Get()).Get());
    Call(*car, L"test.recorder", 1);
    Call(*door, L"test.recorder", 2);
    std::set<Reference*> visited{car.Get(), door.Get()};
    car->RunInstructionsRecursive(target.Get(), context.Get(), visited);
    EXPECT_EQ(Methods(), std::vector<int>{1});
}

TEST_F(ReferenceInstructions, WhatRanIsAmongTheVisited) {
    std::set<Reference*> visited;
    car->RunInstructionsRecursive(target.Get(), context.Get(), visited);
    EXPECT_EQ(visited, std::set<Reference*>{car.Get()});
}

TEST_F(ReferenceInstructions, ARingRunsOnce) {
    const auto use = MakeInstance(car.Get());
    car->AddChild(use.Get());
    Call(*car, L"test.recorder", 1);
    car->RunAllInstructions(target.Get(), context.Get());
    EXPECT_EQ(Methods(), std::vector<int>{1});
    use->SetReference(nullptr);
}

TEST_F(ReferenceInstructions, ADeepChainRunsToItsEnd) {
    const Chain chain(kDeep);
    Call(*chain.references.back(), L"test.recorder", 1);
    Call(*chain.root, L"test.recorder", 2);
    chain.root->RunAllInstructions(target.Get(), context.Get());
    EXPECT_EQ(Methods(), (std::vector<int>{1, 2}));
}

TEST_F(ReferenceInstructions, ListNothingThatCouldNotBeMade) {
    const auto reference = MakeReference();
    mem::FailAllocations(0, 1);
    EXPECT_FALSE(reference->AddInstruction());
    mem::FailAllocations(0, 0);
    EXPECT_EQ(reference->GetInstructionCount(), 0);
    EXPECT_TRUE(reference->AddInstruction());
    EXPECT_EQ(reference->GetInstructionCount(), 1);
}

}  // namespace qn::test

#include "frame/host/scene.h"
#include "graph/post_processing_instruction.h"
#include "tests/behaviour/call_probe.h"
#include "tests/behaviour/element_support.h"
#include "tests/behaviour/foreign_instance.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

using Instruction = Reference::PostProcessingInstruction;

Counted<Instruction> AddCall(Reference& reference, int method, const char* key = CallProbes::kA) {
    auto instruction = reference.AddInstruction();
    instruction->SetCommandKey(String::FromUtf8(key));
    instruction->SetMethodId(method);
    return instruction;
}

/// Something to run on, and the surroundings.
struct Surroundings {
    Counted<Reference> reference = NewReference();
    Counted<Reference> target = NewReference();
    Counted<RecordingContext> context = MakeContext();

    void Run() { reference->RunInstructions(target.Get(), context.Get()); }
    void RunAll() { reference->RunAllInstructions(target.Get(), context.Get()); }
};

Counted<Reference> AddPart(Reference& parent, int method) {
    auto part = NewReference();
    AddCall(*part, method);
    parent.AddChild(part->CreateInstance().Get());
    return part;
}

TEST(ReferenceInstructions, StandInTheOrderInWhichTheyWereAdded) {
    const auto reference = NewReference();
    const auto a = reference->AddInstruction(), b = reference->AddInstruction();
    ASSERT_TRUE(a && b);
    EXPECT_STREQ(a->GetInterfaceName(), "qn.graph.postprocessinginstruction");
    EXPECT_EQ(reference->GetInstructionCount(), 2);
    EXPECT_EQ(reference->GetInstruction(0), a);
    EXPECT_EQ(reference->GetInstruction(1), b);
    EXPECT_FALSE(reference->GetInstruction(2));
    EXPECT_EQ(a->GetRefCount(), 2) << "the caller and the list";
}

TEST(ReferenceInstructions, AreNoneAtFirst) {
    const auto reference = NewReference();
    EXPECT_EQ(reference->GetInstructionCount(), 0);
    EXPECT_FALSE(reference->GetInstruction(0));
    reference->RemoveInstruction(0);
    EXPECT_EQ(reference->GetInstructionCount(), 0);
}

TEST(ReferenceInstructions, AreRemovedOneByOne) {
    const auto reference = NewReference();
    const auto a = reference->AddInstruction(), b = reference->AddInstruction(),
               c = reference->AddInstruction();
    reference->RemoveInstruction(1);
    ASSERT_EQ(reference->GetInstructionCount(), 2);
    EXPECT_EQ(reference->GetInstruction(0), a);
    EXPECT_EQ(reference->GetInstruction(1), c);
    EXPECT_EQ(b->GetRefCount(), 1);
    reference->RemoveInstruction(2);
    EXPECT_EQ(reference->GetInstructionCount(), 2);
}

TEST(ReferenceRun, CallsEachInOrderWhateverTheResult) {
    const CallProbes probes;
    Surroundings s;
    AddCall(*s.reference, 3, CallProbes::kB);
    AddCall(*s.reference, 1);
    AddCall(*s.reference, 2);
    s.Run();
    EXPECT_EQ(probes.Methods(), (std::vector<int>{3, 1, 2}));
    EXPECT_EQ(probes.Calls()[0].key, CallProbes::kB);
    EXPECT_EQ(probes.Calls()[1].key, CallProbes::kA);
}

TEST(ReferenceRun, AsksForTheWholeDescriptionAndHandsOnTheContext) {
    const CallProbes probes;
    Surroundings s;
    AddCall(*s.reference, 7);
    s.Run();
    ASSERT_EQ(probes.Calls().size(), 1U);
    EXPECT_EQ(probes.Calls()[0].queryMask, 0xffU);
    EXPECT_TRUE(probes.Calls()[0].queriedADocument);
    EXPECT_EQ(probes.Calls()[0].context, s.context.Get());
}

TEST(ReferenceRun, NeedsTargetAndContext) {
    const CallProbes probes;
    Surroundings s;
    AddCall(*s.reference, 7);
    s.reference->RunInstructions(nullptr, s.context.Get());
    s.reference->RunInstructions(s.target.Get(), nullptr);
    s.reference->RunAllInstructions(nullptr, s.context.Get());
    s.reference->RunAllInstructions(s.target.Get(), nullptr);
    EXPECT_TRUE(probes.Calls().empty());
}

TEST(ReferenceRun, SkipsWhatCannotBeMadeOrIsNoExtension) {
    const CallProbes probes;
    Surroundings s;
    AddCall(*s.reference, 1, "no.such.class");
    AddCall(*s.reference, 2, "");
    AddCall(*s.reference, 3, CallProbes::kNothing);
    AddCall(*s.reference, 4);
    s.Run();
    EXPECT_EQ(probes.Methods(), std::vector<int>{4});
    EXPECT_TRUE(s.context->Texts().empty()) << "without a word";
}

TEST(ReferenceRun, SkipsWhatIsNoInstruction) {
    const CallProbes probes;
    Surroundings s;
    const auto call = AddCall(*NewReference(), 5);
    Feed(*s.reference, 0x1004, ArrayOf({Var(), Var(3), Var(NewInstance()), Var(call)}).ToArray());
    EXPECT_EQ(s.reference->GetInstructionCount(), 4);
    EXPECT_FALSE(s.reference->GetInstruction(2));
    s.Run();
    EXPECT_EQ(probes.Methods(), std::vector<int>{5});
}

TEST(ReferenceRun, PassesTheTargetAlone) {
    const CallProbes probes;
    Surroundings s;
    AddCall(*s.reference, 7)->SetArgument(1, Var(5));
    s.Run();
    ASSERT_EQ(probes.Calls().size(), 1U) << "it runs without a description";
    const Params& arguments = *probes.Calls()[0].arguments;
    EXPECT_EQ(arguments.GetParamObject(0x9d), static_cast<Interface*>(s.target.Get()));
    EXPECT_EQ(arguments.GetCount(), 1);
}

TEST(ReferenceRunAll, TakesTheChildrenFirst) {
    const CallProbes probes;
    Surroundings s;
    AddCall(*s.reference, 1);
    const auto left = AddPart(*s.reference, 2), right = AddPart(*s.reference, 3);
    AddPart(*left, 4);
    AddPart(*right, 5);
    s.RunAll();
    EXPECT_EQ(probes.Methods(), (std::vector<int>{4, 2, 5, 3, 1}));
    for (const ProbedCall& call : probes.Calls())
        EXPECT_EQ(call.arguments->GetParamObject(0x9d), static_cast<Interface*>(s.target.Get()));
}

TEST(ReferenceRunAll, RunsASharedDefinitionOnce) {
    const CallProbes probes;
    Surroundings s;
    const auto part = AddPart(*s.reference, 2);
    const auto other = AddPart(*s.reference, 3);
    s.reference->AddChild(part->CreateInstance().Get());
    other->AddChild(part->CreateInstance().Get());
    s.RunAll();
    EXPECT_EQ(probes.Methods(), (std::vector<int>{2, 3}));
}

TEST(ReferenceRunAll, StartsAnewEachTime) {
    const CallProbes probes;
    Surroundings s;
    AddPart(*s.reference, 2);
    s.RunAll();
    s.RunAll();
    EXPECT_EQ(probes.Methods(), (std::vector<int>{2, 2}));
}

TEST(ReferenceRunAll, RunsARootThatCountsAsVisited) {
    const CallProbes probes;
    Surroundings s;
    AddCall(*s.reference, 1);
    const auto part = AddPart(*s.reference, 2), other = AddPart(*s.reference, 3);
    std::set<Reference*> visited{s.reference.Get(), part.Get()};
    s.reference->RunInstructionsRecursive(s.target.Get(), s.context.Get(), visited);
    EXPECT_EQ(probes.Methods(), (std::vector<int>{3, 1}));
    EXPECT_EQ(visited, (std::set<Reference*>{s.reference.Get(), part.Get(), other.Get()}));
}

TEST(ReferenceRunAll, NotesDefinitionsThatHaveNothingToRun) {
    Surroundings s;
    const auto part = NewReference();
    s.reference->AddChild(part->CreateInstance().Get());
    std::set<Reference*> visited;
    s.reference->RunInstructionsRecursive(s.target.Get(), s.context.Get(), visited);
    EXPECT_EQ(visited, (std::set<Reference*>{s.reference.Get(), part.Get()}));
}

TEST(ReferenceRunAll, GoesThroughForeignUsesAndPassesOverUsesOfNothing) {
    const CallProbes probes;
    Surroundings s;
    const auto part = NewReference();
    AddCall(*part, 2);
    Feed(*s.reference, 0x1002,
         ArrayOf({Var(NewInstance()), Var(Make<ForeignInstance>(part.Get()))}).ToArray());
    s.RunAll();
    EXPECT_EQ(probes.Methods(), std::vector<int>{2});
}

TEST(ReferenceRunAll, EndsInARing) {
    const CallProbes probes;
    Surroundings s;
    AddCall(*s.reference, 1);
    const auto part = AddPart(*s.reference, 2);
    part->AddChild(s.reference->CreateInstance().Get());
    s.RunAll();
    EXPECT_EQ(probes.Methods(), (std::vector<int>{2, 1}));
    part->RemoveChildAt(0);
}

TEST(ReferenceRunAll, GoesAsDeepAsTheAssembly) {
    constexpr int kLevels = 10'000;
    const CallProbes probes;
    Surroundings s;
    Counted<Reference> last = s.reference;
    for (int i = 0; i < kLevels; ++i) {
        const auto next = NewReference();
        last->AddChild(next->CreateInstance().Get());
        last = next;
    }
    AddCall(*last, 9);
    AddCall(*s.reference, 1);
    s.RunAll();
    EXPECT_EQ(probes.Methods(), (std::vector<int>{9, 1}));
}

}  // namespace
}  // namespace qn::test

#include "graph/post_processing_instruction_impl.h"

#include "tests/graph/graph_support.h"

namespace qn::test {

namespace {

Counted<PostProcessingInstructionImpl> MakeInstruction() {
    auto instruction = Make<PostProcessingInstructionImpl>();
    instruction->SetCommandKey(L"test.class");
    instruction->SetMethodId(7);
    instruction->SetArgument(3, Var(L"value"));
    return instruction;
}

}  // namespace

TEST(PostProcessingInstruction, KeepsEverythingInItsParameters) {
    const auto instruction = MakeInstruction();
    EXPECT_EQ(instruction->GetParamVar(-0x10), Var(L"test.class"));
    EXPECT_EQ(instruction->GetParamVar(-0x0f), Var(7));
    EXPECT_EQ(instruction->GetParamVar(3), Var(L"value"));
}

TEST(PostProcessingInstruction, AFreshOneIsEmpty) {
    const auto instruction = Make<PostProcessingInstructionImpl>();
    EXPECT_TRUE(instruction->GetCommandKey().IsEmpty());
    EXPECT_EQ(instruction->GetMethodId(), 0);
    EXPECT_TRUE(instruction->GetArgument(3).IsEmpty());
}

TEST(PostProcessingInstruction, SurvivesASaveAndALoad) {
    const auto loaded = ReloadedAs(*MakeInstruction());
    EXPECT_EQ(loaded->GetCommandKey(), String(L"test.class"));
    EXPECT_EQ(loaded->GetMethodId(), 7);
    EXPECT_EQ(loaded->GetArgument(3), Var(L"value"));
}

TEST(PostProcessingInstruction, ArgumentsOfTwoIdsOverwriteKeyAndMethod) {
    const auto instruction = MakeInstruction();
    instruction->SetArgument(-0x10, Var(L"other"));
    instruction->SetArgument(-0x0f, Var(8));
    EXPECT_EQ(instruction->GetCommandKey(), String(L"other"));
    EXPECT_EQ(instruction->GetMethodId(), 8);
}

TEST(PostProcessingInstruction, CopyFromTakesTheParameters) {
    const auto copy = Make<PostProcessingInstructionImpl>();
    EXPECT_EQ(copy->CopyFrom(MakeInstruction().Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(copy->GetMethodId(), 7);
    EXPECT_EQ(copy->CopyFrom(MakeInstance().Get(), 0), ResultEnum::kWrongClass);
}

TEST(PostProcessingInstruction, AnswersItsKeyAndThoseOfItsAncestors) {
    const auto instruction = MakeInstruction();
    EXPECT_STREQ(instruction->GetInterfaceName(), "qn.graph.postprocessinginstruction");
    for (const char* name :
         {"qn.graph.postprocessinginstruction", "k3_refsource", "k3_reftarget", "k3_extension"})
        EXPECT_TRUE(instruction->IsTypeOf(name)) << name;
}

}  // namespace qn::test

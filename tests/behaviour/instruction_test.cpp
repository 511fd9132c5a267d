#include "engine/stream/object_file.h"
#include "graph/post_processing_instruction.h"
#include "tests/behaviour/element_support.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

using Instruction = Reference::PostProcessingInstruction;

constexpr int kCommandKey = -0x10, kMethodId = -0x0f;

Counted<Instruction> NewInstruction() {
    return CreateAs<Instruction>(ClassKey::kPostProcessingInstruction);
}

TEST(InstructionClass, CanBeMadeByKey) {
    const auto instruction = NewInstruction();
    ASSERT_TRUE(instruction);
    EXPECT_STREQ(instruction->GetInterfaceName(), "qn.graph.postprocessinginstruction");
    EXPECT_EQ(instruction->GetRefCount(), 1);
}

TEST(InstructionClass, NamesItsAncestors) {
    const auto instruction = NewInstruction();
    for (const char* name :
         {"qn.graph.PostProcessingInstruction", "k3_refsource", "k3_reftarget", "k3_extension"})
        EXPECT_TRUE(instruction->IsTypeOf(name)) << name;
    EXPECT_FALSE(instruction->IsTypeOf("qn.graph.reference"));
    EXPECT_EQ(Cast<HierarchyElement>(static_cast<Interface*>(instruction.Get())), nullptr);
}

TEST(InstructionData, IsParametersAlone) {
    const auto instruction = NewInstruction();
    instruction->SetCommandKey(L"some.class");
    instruction->SetMethodId(12);
    instruction->SetArgument(3, Var(0.5));
    EXPECT_EQ(instruction->GetParamVar(kCommandKey), Var(L"some.class"));
    EXPECT_EQ(instruction->GetParamVar(kMethodId), Var(12));
    EXPECT_EQ(instruction->GetParamVar(3), Var(0.5));
}

TEST(InstructionData, IsReadFromTheParameters) {
    const auto instruction = NewInstruction();
    instruction->SetParamVar(kCommandKey, Var(L"some.class"));
    instruction->SetParamVar(kMethodId, Var(L"12"));
    instruction->SetParamVar(3, Var(L"x"));
    EXPECT_EQ(instruction->GetCommandKey(), String(L"some.class"));
    EXPECT_EQ(instruction->GetMethodId(), 12);
    EXPECT_EQ(instruction->GetArgument(3), Var(L"x"));
}

TEST(InstructionData, IsEmptyAtFirst) {
    const auto instruction = NewInstruction();
    EXPECT_TRUE(instruction->GetCommandKey().IsEmpty());
    EXPECT_TRUE(instruction->GetArgument(0).IsEmpty());
}

TEST(InstructionData, LosesAnArgumentToAnEmptyValue) {
    const auto instruction = NewInstruction();
    instruction->SetArgument(3, Var(1));
    instruction->SetArgument(3, Var());
    EXPECT_EQ(instruction->GetParamType(3), 0);
}

TEST(InstructionData, LetsAnArgumentOverwriteKeyAndMethod) {
    const auto instruction = NewInstruction();
    instruction->SetCommandKey(L"some.class");
    instruction->SetMethodId(12);
    instruction->SetArgument(kCommandKey, Var(L"other.class"));
    instruction->SetArgument(kMethodId, Var(13));
    EXPECT_EQ(instruction->GetCommandKey(), String(L"other.class"));
    EXPECT_EQ(instruction->GetMethodId(), 13);
    EXPECT_EQ(instruction->GetArgument(kMethodId), Var(13));
}

TEST(InstructionSaving, NeedsNoChunkOfItsOwn) {
    const auto instruction = NewInstruction();
    instruction->SetCommandKey(L"some.class");
    instruction->SetArgument(3, Var(1));
    EXPECT_TRUE(TapeOf(*instruction)->OwnIds().empty());
}

TEST(InstructionSaving, KeepsKeyMethodAndAllArguments) {
    const auto instruction = NewInstruction();
    instruction->SetCommandKey(L"some.class");
    instruction->SetMethodId(12);
    instruction->SetArgument(0, Var(L"text"));
    instruction->SetArgument(1, Var(true));
    instruction->SetArgument(-3, ArrayOf({Var(1), Var(L"two")}));
    const auto context = MakeContext();
    const auto loaded =
        CountedCast<Instruction>(LoadFromBytes(SaveToBytes(*instruction, *context), *context));
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->GetCommandKey(), String(L"some.class"));
    EXPECT_EQ(loaded->GetMethodId(), 12);
    EXPECT_EQ(loaded->GetArgument(0), Var(L"text"));
    EXPECT_EQ(loaded->GetArgument(1), Var(true));
    EXPECT_EQ(loaded->GetArgument(-3), ArrayOf({Var(1), Var(L"two")}));
}

TEST(InstructionCopy, TakesKeyMethodAndArguments) {
    const auto source = NewInstruction(), copy = NewInstruction();
    source->SetCommandKey(L"some.class");
    source->SetMethodId(12);
    source->SetArgument(3, Var(L"x"));
    EXPECT_EQ(copy->CopyFrom(source.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(copy->GetCommandKey(), String(L"some.class"));
    EXPECT_EQ(copy->GetMethodId(), 12);
    EXPECT_EQ(copy->GetArgument(3), Var(L"x"));
}

TEST(InstructionCopy, RefusesAnotherClass) {
    const auto copy = NewInstruction();
    copy->SetMethodId(12);
    const auto reference = NewReference();
    reference->SetParamVar(kMethodId, Var(13));
    EXPECT_EQ(copy->CopyFrom(reference.Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(copy->CopyFrom(nullptr, 0), ResultEnum::kWrongClass);
    EXPECT_EQ(copy->GetMethodId(), 12);
}

}  // namespace
}  // namespace qn::test

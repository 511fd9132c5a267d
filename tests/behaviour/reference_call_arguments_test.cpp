#include "frame/host/scene.h"
#include "graph/post_processing_instruction.h"
#include "tests/behaviour/call_probe.h"
#include "tests/behaviour/element_support.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

using namespace graph;

using Instruction = Reference::PostProcessingInstruction;

constexpr int kMethod = 7;
constexpr int kTarget = 0x9d;

/// One stored call of method 7 with arguments, run against a description.
class StoredCall {
public:
    explicit StoredCall(std::string description) : probes_(std::move(description)) {
        call_ = reference_->AddInstruction();
        call_->SetCommandKey(String::FromUtf8(CallProbes::kA));
        call_->SetMethodId(kMethod);
    }
    StoredCall& With(int id, const Var& value) {
        call_->SetArgument(id, value);
        return *this;
    }
    StoredCall& In(LookupTable& table) {
        reference_->RegisterInTable(&table);
        return *this;
    }
    /// What reached the method; the call is there exactly once.
    Counted<Params> Run() {
        reference_->RunInstructions(target_.Get(), MakeContext().Get());
        EXPECT_EQ(probes_.Calls().size(), 1U);
        return probes_.Calls().empty() ? Params::Create() : probes_.Calls().front().arguments;
    }
    Interface* Target() { return target_.Get(); }

private:
    CallProbes probes_;
    Counted<Reference> reference_ = NewReference(), target_ = NewReference();
    Counted<Instruction> call_;
};

/// The arguments besides the target.
std::vector<int> IdsOf(const Params& arguments) {
    std::vector<int> ids;
    for (int i = 0; i < arguments.GetCount(); ++i) {
        if (arguments.IdAt(i) != kTarget) ids.push_back(arguments.IdAt(i));
    }
    return ids;
}

std::string Parameter(int id, const char* type, const char* more = "") {
    return "<Parameter id=\"" + std::to_string(id) + "\" name=\"p\" type=\"" + type + "\" " + more + "/>";
}

TEST(StoredCallArguments, AreThoseThatTheDescriptionNames) {
    const auto arguments = StoredCall(DescriptionOf(Parameter(1, "string") + Parameter(2, "filename") +
                                                    Parameter(3, "int") + Parameter(4, "bool")))
                               .With(1, Var(L"a"))
                               .With(2, Var(L"b.stp"))
                               .With(3, Var(42))
                               .With(4, Var(true))
                               .With(5, Var(L"not described"))
                               .Run();
    EXPECT_EQ(arguments->GetParamVar(1), Var(L"a"));
    EXPECT_EQ(arguments->GetParamVar(2), Var(L"b.stp"));
    EXPECT_EQ(arguments->GetParamVar(3), Var(42));
    EXPECT_EQ(arguments->GetParamVar(4), Var(true));
    EXPECT_EQ(IdsOf(*arguments), (std::vector<int>{1, 2, 3, 4}));
}

TEST(StoredCallArguments, KeepTheirOwnTypeWhateverTheDescriptionSays) {
    const auto arguments = StoredCall(DescriptionOf(Parameter(1, "int") + Parameter(2, "string")))
                               .With(1, Var(L"text"))
                               .With(2, Var(5))
                               .Run();
    EXPECT_EQ(arguments->GetParamVar(1).GetTag(), VarTag::kText);
    EXPECT_EQ(arguments->GetParamVar(2).GetTag(), VarTag::kInt);
}

TEST(StoredCallArguments, TakeADefaultAsTextWhereTheCallHasNone) {
    const auto arguments = StoredCall(DescriptionOf(Parameter(1, "int", "default=\"7\"") +
                                                    Parameter(2, "bool", "default=\"true\"") +
                                                    Parameter(3, "string", "default=\"d\"")))
                               .With(3, Var(L"own"))
                               .Run();
    EXPECT_EQ(arguments->GetParamVar(1).GetTag(), VarTag::kText);
    EXPECT_EQ(arguments->GetParamVar(1), Var(L"7"));
    EXPECT_EQ(arguments->GetParamVar(2).GetTag(), VarTag::kText);
    EXPECT_EQ(arguments->GetParamVar(2), Var(L"true"));
    EXPECT_EQ(arguments->GetParamVar(3), Var(L"own"));
}

TEST(StoredCallArguments, DoNotTakeADefaultInPlaceOfAFalseValue) {
    const auto arguments =
        StoredCall(DescriptionOf(Parameter(1, "int", "default=\"7\""))).With(1, Var(0)).Run();
    EXPECT_EQ(arguments->GetParamVar(1), Var(0));
}

TEST(StoredCallArguments, AreMissingWithoutValueAndDefault) {
    EXPECT_TRUE(IdsOf(*StoredCall(DescriptionOf(Parameter(1, "int"))).Run()).empty());
}

TEST(StoredCallArguments, AreErasedByALaterParameterOfTheSameIdThatStaysEmpty) {
    const auto arguments =
        StoredCall(DescriptionOf(Parameter(1, "int", "default=\"7\"") + Parameter(1, "int"))).Run();
    EXPECT_TRUE(IdsOf(*arguments).empty());
}

TEST(StoredCallArguments, HoldTheSceneOfTheTable) {
    const auto table = NewTable();
    const auto scene = Make<k3::Scene>();
    table->SetSceneAndContext(scene.Get(), nullptr);
    const auto arguments = StoredCall(DescriptionOf(Parameter(1, "scene"))).In(*table).With(1, Var(5)).Run();
    EXPECT_EQ(arguments->GetParamObject(1), static_cast<Interface*>(scene.Get()));
}

TEST(StoredCallArguments, HoldNoSceneWithoutATable) {
    const auto arguments = StoredCall(DescriptionOf(Parameter(1, "scene") + Parameter(2, "int")))
                               .With(1, Var(5))
                               .With(2, Var(6))
                               .Run();
    EXPECT_EQ(arguments->GetParamObject(1), nullptr);
    EXPECT_EQ(arguments->GetParamVar(2), Var(6));
}

TEST(StoredCallArguments, LeaveOutOtherTypesAndOtherSpellings) {
    std::string parameters;
    for (const char* type : {"float", "node", "Scene", "STRING", "Int", "", "string "})
        parameters += Parameter(1, type, "default=\"7\"");
    EXPECT_TRUE(IdsOf(*StoredCall(DescriptionOf(parameters)).With(1, Var(5)).Run()).empty());
}

TEST(StoredCallArguments, LeaveOutParametersThatLackIdNameOrType) {
    const auto arguments =
        StoredCall(DescriptionOf("<Parameter name=\"p\" type=\"int\" default=\"1\"/>"
                                 "<Parameter id=\"2\" type=\"int\" default=\"1\"/>"
                                 "<Parameter id=\"3\" name=\"p\" default=\"1\"/>"
                                 "<Parameter id=\"4\" name=\"\" type=\"int\" default=\"1\"/>"))
            .Run();
    EXPECT_EQ(IdsOf(*arguments), std::vector<int>{4}) << "an empty name is a name";
}

TEST(StoredCallArguments, PassOverElementsOfOtherNames) {
    const auto arguments =
        StoredCall(DescriptionOf("<Result type=\"bool\" id=\"1\" name=\"r\" default=\"1\"/>"
                                 "<parameter id=\"2\" name=\"p\" type=\"int\" default=\"1\"/>" +
                                 Parameter(3, "int", "default=\"1\"")))
            .Run();
    EXPECT_EQ(IdsOf(*arguments), std::vector<int>{3});
}

TEST(StoredCallArguments, ReadIdsUpToTheFirstOtherCharacter) {
    const auto arguments = StoredCall(
                               "<Interface><Methods><Method id=\" 7x\">"
                               "<Parameter id=\"12abc\" name=\"p\" type=\"int\" default=\"1\"/>"
                               "<Parameter id=\"abc\" name=\"p\" type=\"int\" default=\"2\"/>"
                               "</Method></Methods></Interface>")
                               .Run();
    EXPECT_EQ(IdsOf(*arguments), (std::vector<int>{0, 12}));
}

TEST(StoredCallArguments, FollowTheFirstMethodWithTheIdAlone) {
    const auto arguments =
        StoredCall(
            "<Interface><Methods>"
            "<Method id=\"6\"><Parameter id=\"1\" name=\"p\" type=\"int\" default=\"1\"/></Method>"
            "<Other id=\"7\"><Parameter id=\"2\" name=\"p\" type=\"int\" default=\"1\"/></Other>"
            "<Method id=\"7\"><Parameter id=\"3\" name=\"p\" type=\"int\" default=\"1\"/></Method>"
            "<Method id=\"7\" name=\"again\"><Parameter id=\"4\" name=\"p\" type=\"int\" "
            "default=\"1\"/></Method>"
            "</Methods></Interface>")
            .Run();
    EXPECT_EQ(IdsOf(*arguments), std::vector<int>{3}) << "its name does not matter, nor that it has none";
}

TEST(StoredCallArguments, StayEmptyWhereTheDescriptionHasAnotherShape) {
    for (const char* description :
         {"<Other><Methods><Method id=\"7\"><Parameter id=\"1\" name=\"p\" type=\"int\" "
          "default=\"1\"/></Method></Methods></Other>",
          "<Interface><Method id=\"7\"><Parameter id=\"1\" name=\"p\" type=\"int\" "
          "default=\"1\"/></Method></Interface>",
          "<Interface/>", "<Interface><Methods/></Interface>", "no description at all"}) {
        EXPECT_TRUE(IdsOf(*StoredCall(description).With(1, Var(5)).Run()).empty()) << description;
    }
}

TEST(StoredCallArguments, CannotTakeThePlaceOfTheTarget) {
    StoredCall call(DescriptionOf(Parameter(kTarget, "string", "default=\"x\"")));
    const auto arguments = call.With(kTarget, Var(L"mine")).Run();
    EXPECT_EQ(arguments->GetParamObject(kTarget), call.Target());
}

TEST(StoredCallArguments, CanBeKeyAndMethodOfTheCallItself) {
    const auto arguments =
        StoredCall(DescriptionOf(Parameter(-0x10, "string") + Parameter(-0x0f, "int"))).Run();
    EXPECT_EQ(arguments->GetParamVar(-0x10), Var(L"test.probe.a"));
    EXPECT_EQ(arguments->GetParamVar(-0x0f), Var(kMethod));
}

TEST(StoredCallArguments, AreNoTestOfTheMethodItself) {
    StoredCall call("<Interface><Methods><Method id=\"1\"/></Methods></Interface>");
    EXPECT_EQ(call.Run()->GetCount(), 1) << "a method that is not described is called";
}

}  // namespace
}  // namespace qn::test

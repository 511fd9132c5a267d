#include "engine/runtime/context_impl.h"

#include "frame/host/api.h"
#include "tests/support/recording_context.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace qn {
namespace {

using test::MakeContext;
using testing::ElementsAre;

constexpr int kLoading = 3;

TEST(Context, KeepsMessagesInOrder) {
    const auto context = MakeContext();
    context->ReportMessage(MessageInfo(2), L"first");
    context->ReportMessage(MessageInfo(kLoading), L"zweite größe");
    EXPECT_THAT(context->Texts(), ElementsAre("first", "zweite größe"));
    EXPECT_THAT(context->Levels(), ElementsAre(2, kLoading));
}

TEST(Context, TellsAListenerOfEachMessage) {
    const auto context = MakeContext();
    std::vector<std::string> heard;
    context->SetMessageFunction(
        [&](const ContextImpl::Message& message) { heard.push_back(message.text.ToUtf8()); });
    context->ReportMessage(MessageInfo(2), L"one");
    EXPECT_THAT(heard, ElementsAre("one"));
}

TEST(Context, AnswersZeroForAnOptionThatIsNotSet) {
    const auto context = MakeContext();
    EXPECT_EQ(context->GetOption(0, "prevent_reinstancing", 0), 0);
    EXPECT_EQ(context->GetOption(0, nullptr, 0), 0);
}

TEST(Context, KnowsOptionsByTheirExactName) {
    const auto context = MakeContext();
    context->SetOption("prevent_reinstancing", 1);
    EXPECT_EQ(context->GetOption(0, "prevent_reinstancing", 0), 1);
    EXPECT_EQ(context->GetOption(0, "Prevent_Reinstancing", 0), 0);
}

TEST(Context, CarriesParametersLikeAnyExtension) {
    const auto context = MakeContext();
    context->SetParamVar(0xa7, Var(5));
    EXPECT_EQ(context->GetParamVar(0xa7).ToInt(), 5);
    EXPECT_TRUE(context->GetParamVar(0xa8).IsEmpty());
}

TEST(Context, KeepsTheFirstFailureAndReportsEach) {
    const auto context = MakeContext();
    EXPECT_EQ(context->GetFailure(), LoadFailure::kNone);
    context->Fail(LoadFailure::kMissing, L"a.stp: no such file");
    context->Fail(LoadFailure::kMalformed, L"b.stp: broken");
    EXPECT_EQ(context->GetFailure(), LoadFailure::kMissing);
    EXPECT_EQ(context->GetFailureText(), String(L"a.stp: no such file"));
    EXPECT_THAT(context->Texts(), ElementsAre("a.stp: no such file", "b.stp: broken"));
    EXPECT_THAT(context->Levels(), ElementsAre(kLoading, kLoading));
}

TEST(Context, IsCancelledByItsProgressFunction) {
    const auto context = MakeContext();
    context->SetProgressFunction([](double fraction) { return fraction < 0.5; });
    EXPECT_TRUE(context->ReportProgress(0.25));
    EXPECT_FALSE(context->IsCancelled());
    EXPECT_FALSE(context->ReportProgress(0.75));
    EXPECT_TRUE(context->IsCancelled());
}

TEST(Context, StaysCancelled) {
    const auto context = MakeContext();
    context->Cancel();
    EXPECT_FALSE(context->ReportProgress(0.1));
    context->SetProgressFunction([](double) { return true; });
    EXPECT_FALSE(context->ReportProgress(0.2));
}

TEST(Context, ServesAgainAfterARestart) {
    const auto context = MakeContext();
    context->Fail(LoadFailure::kLimit, L"too deep");
    context->Cancel();
    context->Restart();
    EXPECT_FALSE(context->IsCancelled());
    EXPECT_EQ(context->GetFailure(), LoadFailure::kNone);
    EXPECT_TRUE(context->GetFailureText().IsEmpty());
    EXPECT_TRUE(context->Texts().empty());
}

TEST(Context, IsAnExtension) {
    const auto context = api->CreateContext(0, 0);
    EXPECT_STREQ(context->GetInterfaceName(), "k3_context");
    EXPECT_TRUE(context->IsTypeOf("K3_Context"));
    EXPECT_TRUE(context->IsTypeOf("k3_extension"));
    EXPECT_FALSE(context->IsTypeOf("k3_node"));
    EXPECT_NE(Cast<Extension>(static_cast<Interface*>(context.Get())), nullptr);
}

}  // namespace
}  // namespace qn

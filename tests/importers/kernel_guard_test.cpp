#include "importers/step/kernel/kernel_guard.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <Standard_OutOfRange.hxx>

#include <new>
#include <stdexcept>

namespace {

using qn::step::GuardResult;
using qn::step::RunGuarded;

TEST(KernelGuard, SaysNothingWhenAllGoesWell) {
    bool ran = false;
    const GuardResult result = RunGuarded([&] { ran = true; });
    EXPECT_TRUE(ran);
    EXPECT_TRUE(result.error.empty());
    EXPECT_FALSE(result.isFault);
}

TEST(KernelGuard, TurnsExceptionsIntoTexts) {
    EXPECT_EQ(RunGuarded([] { throw std::runtime_error("cause"); }).error, "cause");
    EXPECT_EQ(RunGuarded([] { throw std::bad_alloc(); }).error, "not enough memory");
    EXPECT_EQ(RunGuarded([] { throw Standard_OutOfRange("index"); }).error,
              "the modelling kernel failed: Standard_OutOfRange, index");
}

#ifndef ASSEMBLY_SANITIZERS
int Recurse(volatile int* depth) {
    volatile int frame[256] = {};
    frame[0] = *depth + 1;
    return frame[0] < 0 ? 0 : Recurse(frame) + frame[0];
}

TEST(KernelGuard, SurvivesAFaultInsideTheKernel) {
    const GuardResult result = RunGuarded([] { ::raise(SIGSEGV); });
    EXPECT_TRUE(result.isFault);
    EXPECT_EQ(result.error, "the modelling kernel failed: bad memory access");
    EXPECT_TRUE(RunGuarded([] { ::raise(SIGFPE); }).isFault);
}

TEST(KernelGuard, SurvivesTheEndOfTheStack) {
    EXPECT_TRUE(RunGuarded([] {
                    volatile int start = 0;
                    Recurse(&start);
                }).isFault);
}

TEST(KernelGuard, PutsHandlersBack) {
    struct sigaction before {};
    struct sigaction after {};
    sigaction(SIGSEGV, nullptr, &before);
    RunGuarded([] { ::raise(SIGSEGV); });
    sigaction(SIGSEGV, nullptr, &after);
    EXPECT_EQ(before.sa_handler, after.sa_handler);
}
#endif

}  // namespace

#include "importers/step/kernel/kernel_watch.h"

#include <gtest/gtest.h>

#include <thread>

namespace {

using qn::step::KernelWatch;
using namespace std::chrono_literals;

/// Asks the watch until it wants to stop, for a second at most.
bool Stops(KernelWatch& watch) {
    const auto end = std::chrono::steady_clock::now() + 1s;
    while (std::chrono::steady_clock::now() < end) {
        if (watch.UserBreak()) return true;
        std::this_thread::sleep_for(5ms);
    }
    return false;
}

TEST(KernelWatch, StopsWhenTheUserWantsTo) {
    const Handle(KernelWatch) watch = new KernelWatch([] { return false; });
    watch->BeginDefinition();
    EXPECT_FALSE(watch->UserBreak()) << "asked too soon";
    EXPECT_TRUE(Stops(*watch));
    EXPECT_FALSE(watch->TookTooLong());
}

TEST(KernelWatch, StopsWhatTakesTooLong) {
    const Handle(KernelWatch) watch = new KernelWatch([] { return true; }, 150ms);
    watch->BeginDefinition();
    EXPECT_TRUE(Stops(*watch));
    EXPECT_TRUE(watch->TookTooLong());
    watch->BeginDefinition();
    EXPECT_FALSE(watch->TookTooLong());
    EXPECT_FALSE(watch->UserBreak());
}

}  // namespace

#include "frame/host/change_management.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

TEST(Availability, IsGivenUnlessACheckSaysNo) {
    EXPECT_TRUE(ChangeManagementSupportBase::CheckAvailability(nullptr));
    ChangeManagementSupportBase::SetAvailabilityCheck([](Context* context) { return context != nullptr; });
    EXPECT_FALSE(ChangeManagementSupportBase::CheckAvailability(nullptr));
    ChangeManagementSupportBase::SetAvailabilityCheck(nullptr);
    EXPECT_TRUE(ChangeManagementSupportBase::CheckAvailability(nullptr));
}

}  // namespace
}  // namespace qn::test

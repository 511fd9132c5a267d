#include "frame/host/change_management.h"

namespace qn {
namespace {

ChangeManagementSupportBase::AvailabilityCheck g_check = nullptr;

}  // namespace

bool ChangeManagementSupportBase::CheckAvailability(Context* context) {
    return !g_check || g_check(context);
}

void ChangeManagementSupportBase::SetAvailabilityCheck(AvailabilityCheck check) {
    g_check = check;
}

}  // namespace qn

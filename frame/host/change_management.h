#pragma once

namespace qn {

class Context;

/// The host's gate in front of operations that change or read a scene as a whole.
class ChangeManagementSupportBase {
public:
    using AvailabilityCheck = bool (*)(Context* context);
    /// Whether such operations may run at present; the context may be null. Open unless a check is set.
    static bool CheckAvailability(Context* context);
    /// Null opens the gate again.
    static void SetAvailabilityCheck(AvailabilityCheck check);
};

/// Marks a class whose operations pass the gate.
template <class Self>
class ChangeManagementSupport : public ChangeManagementSupportBase {};

}  // namespace qn

#pragma once

#if defined(ASSEMBLY_SANITIZERS)
#include <sanitizer/lsan_interface.h>
#endif

namespace qn::test {

/// What is allocated while it lives may leak: damaged files can make objects own each other in a ring, which
/// is accepted.
class AcceptedLeaks {
public:
#if defined(ASSEMBLY_SANITIZERS)
    AcceptedLeaks() {
        __lsan_disable();
    }
    ~AcceptedLeaks() {
        __lsan_enable();
    }
#else
    AcceptedLeaks() {}
    ~AcceptedLeaks() {}
#endif
    AcceptedLeaks(const AcceptedLeaks&) = delete;
    AcceptedLeaks& operator=(const AcceptedLeaks&) = delete;
};

}  // namespace qn::test

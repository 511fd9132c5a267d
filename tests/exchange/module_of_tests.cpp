// The module is linked into this program; its classes are registered before the first test runs.

#include "frame/entry.h"
#include "tests/support/static_module.h"

namespace qn::test {
namespace {

const EntryModule g_module(&K3DLLFunc);

}  // namespace
}  // namespace qn::test

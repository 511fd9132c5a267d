#include "engine/runtime/session.h"

namespace qn {

Session& GetSession() {
    static Session& session = *[] {
        auto* fresh = new Session;
        fresh->userData = VarMap::Create();
        return fresh;
    }();
    return session;
}

}  // namespace qn

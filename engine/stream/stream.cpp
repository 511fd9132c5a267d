#include "frame/host/stream.h"

namespace qn {

bool Stream::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_stream") || Interface::IsTypeOf(name);
}

const ClassRecord& Stream::StaticClass() {
    static const ClassRecord& record = InternClass("qn::Stream");
    return record;
}

void* Stream::CastTo(const ClassRecord& wanted) {
    return CastThrough<Stream, Interface>(this, wanted);
}

}  // namespace qn

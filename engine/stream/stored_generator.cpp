#include "engine/stream/stored_generator.h"

#include "frame/host/stream.h"

namespace qn {

ResultEnum StoredGenerator::Generate(Extension*, Context*) {
    return ResultEnum::kNothing;
}

ResultEnum StoredGenerator::HandleChunk(int id, Stream* stream, Context* context) {
    if (id != kRootChunk) return Generator::HandleChunk(id, stream, context);
    root_ = stream->ReadObject(context);
    return ResultEnum::kSuccess;
}

bool StoredGenerator::IsTypeOf(const char* name) const {
    return EqualKeys(name, key_.c_str()) || Generator::IsTypeOf(name);
}

const ClassRecord& StoredGenerator::StaticClass() {
    static const ClassRecord& record = InternClass("qn::StoredGenerator");
    return record;
}

void* StoredGenerator::CastTo(const ClassRecord& wanted) {
    return CastThrough<StoredGenerator, k3::Generator>(this, wanted);
}

}  // namespace qn

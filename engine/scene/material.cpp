#include "engine/scene/chunk_ids.h"
#include "engine/scene/chunk_io.h"
#include "frame/host/object3d.h"

namespace qn::k3 {

ResultEnum Material::Save(Stream* stream, Context* context) {
    if (const ResultEnum base = ReferenceSource::Save(stream, context); base != ResultEnum::kSuccess)
        return base;
    bool written =
        ChunkWriter(stream, MaterialChunk::kColour).Bytes(colour_.data(), sizeof(float), colour_.size()).Ok();
    if (written && name_.NonEmpty()) written = ChunkWriter(stream, MaterialChunk::kName).Text(name_).Ok();
    return written ? ResultEnum::kSuccess : ResultEnum::kWriteFailed;
}

ResultEnum Material::HandleChunk(int id, Stream* stream, Context* context) {
    if (id == MaterialChunk::kName) {
        name_.Load(stream);
    } else if (id == MaterialChunk::kColour) {
        std::array<float, 4> colour;
        if (stream->ReadData(colour.data(), sizeof(float), 4) == 4) colour_ = colour;
    } else {
        return ReferenceSource::HandleChunk(id, stream, context);
    }
    return stream->HasFailed() ? ResultEnum::kNothing : ResultEnum::kSuccess;
}

bool Material::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_material") || ReferenceSource::IsTypeOf(name);
}

const ClassRecord& Material::StaticClass() {
    static const ClassRecord& record = InternClass("qn::k3::Material");
    return record;
}

void* Material::CastTo(const ClassRecord& wanted) {
    return CastThrough<Material, ReferenceSource>(this, wanted);
}

const ClassRecord& MaterialSlot::StaticClass() {
    static const ClassRecord& record = InternClass("qn::k3::MaterialSlot");
    return record;
}

void* MaterialSlot::CastTo(const ClassRecord& wanted) {
    return CastThrough<MaterialSlot, Interface>(this, wanted);
}

}  // namespace qn::k3

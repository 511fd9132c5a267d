#include "engine/scene/chunk_ids.h"
#include "engine/scene/chunk_io.h"
#include "engine/scene/generated_content.h"
#include "engine/scene/scene_access.h"
#include "engine/stream/stream_reader.h"
#include "engine/stream/stream_writer.h"
#include "frame/host/generator.h"
#include "frame/host/parameter_ids.h"
#include "frame/host/params.h"
#include "graph/instance.h"
#include "graph/node_content.h"
#include "graph/reference.h"

namespace qn::k3 {
namespace {

bool WriteMatrix(Stream* stream, int id, const std::unique_ptr<Matrix4<double>>& matrix) {
    return !matrix || ChunkWriter(stream, id).Bytes(&matrix->m[0][0], sizeof(double), 16).Ok();
}

/// Null after a failure.
std::unique_ptr<Matrix4<double>> ReadMatrix(Stream* stream) {
    auto matrix = std::make_unique<Matrix4<double>>();
    if (stream->ReadData(&matrix->m[0][0], sizeof(double), 16) == 16) return matrix;
    stream->Fail(L"a node's matrix ends early");
    return nullptr;
}

bool WriteText(Stream* stream, int id, const String& text) {
    return text.IsEmpty() || ChunkWriter(stream, id).Text(text).Ok();
}

/// Whether nodes that a generator makes are to be written, too.
bool WritesGenerated(Stream* stream) {
    const auto* writer = Cast<StreamWriter>(stream);
    return writer && writer->ExpandsGenerated();
}

/// How the instance of a generator's own node is stored, while it lives. The generator makes its own instance
/// anew at each load, so that one is left out. An instance of another hierarchy stays; that there is none,
/// although the generator ran, is said by `false` in its place.
class StoredInstance {
public:
    explicit StoredInstance(Node& node) : node_(node), present_(node.GetParamVar(Param::kInstance)) {
        const graph::Reference* root = graph::GeneratedReference(node);
        if (!root || HasOtherHierarchy(node) == present_.IsSet()) return;
        replaced_ = true;
        SetParameter(present_.IsSet() ? Var() : Var(false));
    }
    ~StoredInstance() {
        if (replaced_) SetParameter(present_);
    }
    StoredInstance(const StoredInstance&) = delete;
    StoredInstance& operator=(const StoredInstance&) = delete;

private:
    /// Past the node's own calls, for which this would be a change.
    void SetParameter(const Var& value) {
        if (Params* params = node_.Extension::GetParams(value.IsSet()))
            params->SetParamVar(Param::kInstance, value);
    }

    Node& node_;
    Var present_;
    bool replaced_ = false;
};

/// Whether the node still belongs to the hierarchy that made its children. None of them carries an instance
/// once the ties were cut.
bool HasTiedChild(const Node& node) {
    for (const Node* child = node.GetFirstChild(); child; child = child->GetNextSibling())
        if (graph::CarriedInstance(*child)) return true;
    return !node.GetFirstChild();
}

}  // namespace

ResultEnum Node::Load(Stream* stream, Context* context) {
    const ResultEnum result = ReferenceSource::Load(stream, context);
    const graph::Reference* root =
        SceneAccess::AreChildrenStored(*this) ? graph::GeneratedReference(*this) : nullptr;
    const Var instance = GetParamVar(Param::kInstance);
    if (instance.GetTag() == VarTag::kBool) DeleteParam(Param::kInstance);
    if (!root || instance.IsSet() || !HasTiedChild(*this)) return result;
    if (const auto own = root->GetInstance(root->GetInstanceCount() - 1))
        SetParamVar(Param::kInstance, Var(own));
    return result;
}

ResultEnum Node::Save(Stream* stream, Context* context) {
    {
        const StoredInstance guard(*this);
        const ResultEnum base = ReferenceSource::Save(stream, context);
        if (base != ResultEnum::kSuccess) return base;
    }
    if (const ResultEnum fields = SaveFields(stream, context); fields != ResultEnum::kSuccess) return fields;
    return SaveChildren(stream, context);
}

ResultEnum Node::SaveFields(Stream* stream, Context* context) const {
    bool written = WriteText(stream, NodeChunk::kName, name_);
    if (written && (flags_ || word1_ || shortValue_ || GetIntegerAttribute()))
        written = ChunkWriter(stream, NodeChunk::kWords)
                      .Int(static_cast<int>(flags_))
                      .Int(static_cast<int>(word1_))
                      .Int(GetIntegerAttribute())
                      .Int(shortValue_)
                      .Ok();
    written = written && WriteMatrix(stream, NodeChunk::kMatrix, matrix_);
    if (written && object_)
        written = SaveObjectHandleSafeForm(context, stream, object_.Get(), NodeChunk::kObject,
                                           NodeChunk::kPairedObject);
    if (written && rare_) {
        written = WriteText(stream, NodeChunk::kDisplayName, rare_->displayName) &&
                  WriteText(stream, NodeChunk::kText, rare_->text) &&
                  WriteMatrix(stream, NodeChunk::kOwnMatrix, rare_->ownMatrix) &&
                  WriteMatrix(stream, NodeChunk::kThirdMatrix, rare_->thirdMatrix);
        if (written && rare_->opacity != 1.0f)
            written = ChunkWriter(stream, NodeChunk::kOpacity).Bytes(&rare_->opacity, sizeof(float), 1).Ok();
        for (const auto& [kind, track] : rare_->tracks)
            written =
                written &&
                ChunkWriter(stream, NodeChunk::kTrack).Int(kind).Number(track.Get(), context, false).Ok();
    }
    return written ? ResultEnum::kSuccess : ResultEnum::kWriteFailed;
}

ResultEnum Node::SaveChildren(Stream* stream, Context* context) const {
    const bool stored = SceneAccess::AreChildrenStored(*this) || HasOtherHierarchy(*this);
    if (!first_ && !stored) return ResultEnum::kSuccess;
    if (!WritesGenerated(stream) && CanGenerateChildren(*this)) return ResultEnum::kSuccess;
    ChunkWriter chunk(stream, NodeChunk::kChildren);
    for (Node* child = first_; child && chunk.Ok(); child = child->next_)
        chunk.Number(child, context, false);
    return chunk.Ok() ? ResultEnum::kSuccess : ResultEnum::kWriteFailed;
}

ResultEnum Node::HandleChunk(int id, Stream* stream, Context* context) {
    struct Row {
        int id;
        void (*read)(Node& node, Stream* stream, Context* context);
    };
    static constexpr Row kRows[] = {
        {NodeChunk::kName, [](Node& node, Stream* in, Context*) { node.name_.Load(in); }},
        {NodeChunk::kDisplayName,
         [](Node& node, Stream* in, Context*) { node.Rarely().displayName.Load(in); }},
        {NodeChunk::kText, [](Node& node, Stream* in, Context*) { node.Rarely().text.Load(in); }},
        {NodeChunk::kWords, [](Node& node, Stream* in, Context*) { node.ReadWords(in); }},
        {NodeChunk::kMatrix,
         [](Node& node, Stream* in, Context*) { node.SetMatrix(ReadMatrix(in).get(), 0); }},
        {NodeChunk::kOwnMatrix,
         [](Node& node, Stream* in, Context*) { node.SetMatrix(ReadMatrix(in).get(), 1); }},
        {NodeChunk::kThirdMatrix,
         [](Node& node, Stream* in, Context*) { node.Rarely().thirdMatrix = ReadMatrix(in); }},
        {NodeChunk::kOpacity,
         [](Node& node, Stream* in, Context*) { in->ReadData(&node.Rarely().opacity, sizeof(float), 1); }},
        {NodeChunk::kObject,
         [](Node& node, Stream* in, Context* c) { node.SetObject(Cast<Object3D>(in->ReadObject(c).Get())); }},
        {NodeChunk::kPairedObject, [](Node& node, Stream* in, Context* c) { node.ReadPairedObject(in, c); }},
        {NodeChunk::kTrack, [](Node& node, Stream* in, Context* c) { node.ReadTrack(in, c); }},
        {NodeChunk::kChildren, [](Node& node, Stream* in, Context* c) { node.ReadChildren(in, c); }},
    };
    for (const Row& row : kRows) {
        if (row.id != id) continue;
        row.read(*this, stream, context);
        return stream->HasFailed() ? ResultEnum::kNothing : ResultEnum::kSuccess;
    }
    return ReferenceSource::HandleChunk(id, stream, context);
}

void Node::ReadWords(Stream* stream) {
    int words[4] = {0, 0, 0, 0};
    for (int& word : words)
        if (!stream->ReadInt(word)) break;
    flags_ = static_cast<unsigned>(words[0]);
    word1_ = static_cast<unsigned>(words[1]);
    SetIntegerAttribute(words[2], 0);
    shortValue_ = static_cast<std::int16_t>(words[3]);
}

/// What was read before is the handle partner.
void Node::ReadPairedObject(Stream* stream, Context* context) {
    const auto object = CountedCast<Object3D>(stream->ReadObject(context));
    if (!object) return;
    if (object_ && !(object_ == object)) object->AttachHandleObject(object_.Get());
    SetObject(object.Get());
}

void Node::ReadTrack(Stream* stream, Context* context) {
    int kind = 0;
    if (!stream->ReadInt(kind)) return;
    const Counted<Interface> track = stream->ReadObjectNumber(context);
    if (auto* known = Cast<Track>(track.Get())) SetTrack(kind, known);
}

/// Whether this stands below a node that has no parent. A node without children costs nothing, and is the
/// usual case: what stands above others is read after them.
bool Node::IsBelowTop(const Node& top, Stream* stream) const {
    if (!parent_ || !top.first_) return false;
    auto* reader = Cast<StreamReader>(stream);
    return reader ? reader->GetAncestors().TopOf(*this) == &top : IsBelow(&top);
}

void Node::ReadChildren(Stream* stream, Context* context) {
    if (Generator::Get(this)) SceneAccess::SetChildrenStored(*this);
    ReadNumbers(stream, context, [&](const Counted<Interface>& object) {
        auto* child = Cast<Node>(object.Get());
        if (!child || stream->HasFailed()) return;
        const bool fits = !child->parent_ && !child->scene_ && child != this && !IsBelowTop(*child, stream);
        if (fits)
            Link(child);
        else
            stream->Fail(L"a node is listed as a child twice, or below itself");
    });
}

}  // namespace qn::k3

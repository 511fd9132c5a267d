#include "engine/scene/undo_records.h"

#include "frame/host/layer.h"

namespace qn::k3 {

FieldsRecord::FieldsRecord(Node& node, unsigned kinds)
    : node_(node), before_(SceneAccess::FieldsOf(node, kinds)) {}
void FieldsRecord::Finish() {
    after_ = SceneAccess::FieldsOf(*node_, before_.kinds);
}
void FieldsRecord::Restore(bool before) {
    SceneAccess::SetFields(*node_, before ? before_ : after_);
}

ChildrenRecord::ChildrenRecord(Node& parent) : parent_(parent), before_(SceneAccess::ChildrenOf(parent)) {}

void ChildrenRecord::Finish() {
    after_ = SceneAccess::ChildrenOf(*parent_);
    if (!added_.empty())
        std::erase_if(before_, [this](const Counted<Node>& child) { return added_.contains(child.Get()); });
    added_.clear();
}

void ChildrenRecord::TakeOut(bool before) {
    SceneAccess::DropOtherChildren(*parent_, before ? before_ : after_);
}
void ChildrenRecord::Restore(bool before) {
    SceneAccess::SetChildren(*parent_, before ? before_ : after_);
}

TracksRecord::TracksRecord(Node& node) : node_(node), before_(Capture()) {}

std::vector<TracksRecord::State> TracksRecord::Capture() const {
    std::vector<State> states;
    for (const auto& [kind, track] : SceneAccess::TracksOf(*node_))
        states.push_back({kind, track, track->Clone(0)});
    return states;
}

void TracksRecord::Finish() {
    after_ = Capture();
}

void TracksRecord::Restore(bool before) {
    for (const auto& [kind, track] : SceneAccess::TracksOf(*node_))
        node_->SetTrack(kind, nullptr);
    for (const State& state : before ? before_ : after_) {
        if (state.content) state.track->CopyFrom(state.content.Get(), 0);
        node_->SetTrack(state.kind, state.track.Get());
    }
}

ParamRecord::ParamRecord(Extension& object, int id)
    : object_(&object), hold_(Cast<Scene>(&object) ? nullptr : &object), id_(id), before_(Capture()) {}

Var ParamRecord::Capture() const {
    Var value = object_->GetParamVar(id_);
    value.MakeUnique(1);
    return value;
}

void ParamRecord::Finish() {
    after_ = Capture();
}

void ParamRecord::Restore(bool before) {
    Var value = before ? before_ : after_;
    value.MakeUnique(1);  // later edits must not reach the record
    if (value.IsSet())
        object_->SetParamVar(id_, value);
    else
        object_->DeleteParam(id_);
}

MetadataRecord::MetadataRecord(Extension& object) : object_(&object), before_(Capture()) {}

MetadataRecord::State MetadataRecord::Capture() const {
    VarMap* map = object_->GetMetadata(false);
    Var content(map, 1);
    content.MakeUnique(1);
    return {Counted<VarMap>(map), content};
}

void MetadataRecord::Finish() {
    after_ = Capture();
}

void MetadataRecord::Restore(bool before) {
    const State& state = before ? before_ : after_;
    if (state.map) {
        Var content = state.content;
        content.MakeUnique(1);
        const VarMap& source = *content.ToMap();
        state.map->Clear();
        for (int i = 0; i < source.GetCount(); ++i)
            state.map->At(source.KeyAt(i)) = source.ValueAt(i);
    }
    object_->SetMetadata(state.map.Get());
}

MembersRecord::MembersRecord(Layer& layer) : layer_(&layer), before_(SceneAccess::MembersOf(layer)) {}
void MembersRecord::Finish() {
    after_ = SceneAccess::MembersOf(*layer_);
}
void MembersRecord::Restore(bool before) {
    SceneAccess::SetMembers(*layer_, before ? before_ : after_);
}

ArraysRecord::ArraysRecord(Scene& scene) : scene_(scene), before_(SceneAccess::ArraysOf(scene)) {}
void ArraysRecord::Finish() {
    after_ = SceneAccess::ArraysOf(scene_);
}
void ArraysRecord::Restore(bool before) {
    SceneAccess::SetArrays(scene_, before ? before_ : after_);
}

}  // namespace qn::k3

#include "engine/scene/undo_recorder.h"

#include "engine/scene/undo_records.h"
#include "frame/host/layer.h"
#include "graph/reference.h"

#include <iterator>

namespace qn::k3 {

template <class Make>
UndoRecord* SceneUndo::Keep(Topic topic, const void* object, int detail, Make&& make) {
    if (!IsOpen() || !object) return nullptr;
    UndoRecord*& known = known_[{topic, object, detail}];
    if (!known) known = open_.records.emplace_back(make()).get();
    return known;
}

void SceneUndo::BeginItem(const String& text) {
    if (restoring_ || depth_++ > 0) return;
    open_ = Item{text, {}, Weak<Interface>(BomHelper(&scene_).GetCurrentBom()), {}};
    known_.clear();
}

void SceneUndo::EndItem(const wchar_t* text) {
    if (restoring_ || depth_ == 0 || --depth_ > 0) return;
    if (text && *text) open_.text = text;
    known_.clear();
    if (open_.records.empty()) return;
    for (const auto& record : open_.records)
        record->Finish();
    open_.shownAfter = BomHelper(&scene_).GetCurrentBom();
    undone_.clear();
    done_.push_back(std::exchange(open_, {}));
}

void SceneUndo::RecordFields(Node* node, unsigned kinds) {
    Keep(Topic::kFields, node, static_cast<int>(kinds),
         [&] { return std::make_unique<FieldsRecord>(*node, kinds); });
}

void SceneUndo::RecordAttributes(Node* node, int) {
    RecordFields(node, FieldKind::kAttributes);
}
void SceneUndo::RecordName(Node* node, int) {
    RecordFields(node, FieldKind::kName);
}
void SceneUndo::RecordObject(Node* node, int) {
    RecordFields(node, FieldKind::kObject);
}
void SceneUndo::RecordTransform(Node* node, int, int) {
    RecordFields(node, FieldKind::kTransform);
}

void SceneUndo::RecordTrack(Node* node, int) {
    Keep(Topic::kTrack, node, 0, [&] { return std::make_unique<TracksRecord>(*node); });
}

// A node that has no parent yet is noticed when it gets one.
void SceneUndo::RecordNodeAdded(Node* node, int) {
    Node* parent = node ? node->GetParent() : nullptr;
    UndoRecord* record =
        Keep(Topic::kChildren, parent, 0, [&] { return std::make_unique<ChildrenRecord>(*parent); });
    if (record) static_cast<ChildrenRecord*>(record)->MarkAdded(*node);
}

void SceneUndo::RecordParam(Extension* object, int id, const Var&) {
    Keep(Topic::kParam, object, id, [&]() -> std::unique_ptr<UndoRecord> {
        if (id == Param::kMetadataUndo && Cast<graph::Reference>(object))
            return std::make_unique<MetadataRecord>(*object);
        return std::make_unique<ParamRecord>(*object, id);
    });
}

void SceneUndo::BeforeChildrenChange(Node& parent) {
    Keep(Topic::kChildren, &parent, 0, [&] { return std::make_unique<ChildrenRecord>(parent); });
}

void SceneUndo::BeforeListedChange(Node& node) {
    Keep(Topic::kListed, &node, 0, [&] { return std::make_unique<ListedRecord>(node); });
}

void SceneUndo::BeforeMembersChange(Layer& layer) {
    Keep(Topic::kMembers, &layer, 0, [&] { return std::make_unique<MembersRecord>(layer); });
}

void SceneUndo::BeforeArraysChange() {
    Keep(Topic::kArrays, &scene_, 0, [&] { return std::make_unique<ArraysRecord>(scene_); });
}

// A scene without structures shows what becomes the first one.
bool SceneUndo::IsShown(const Interface* structure) const {
    const BomHelper boms(&scene_);
    const Interface* shown = boms.GetCurrentBom();
    if (structure == shown) return true;
    const VarArray* all = boms.GetBoms();
    const Interface* first = all ? all->Get(0).ToInterface() : nullptr;
    return structure ? !shown && structure == first : shown == first;
}

bool SceneUndo::Undo() {
    if (depth_ > 0 || restoring_ || done_.empty() || !IsShown(done_.back().shownAfter.Get())) return false;
    Item item = std::move(done_.back());
    done_.pop_back();
    Restore(item, true);
    undone_.push_back(std::move(item));
    return true;
}

bool SceneUndo::Redo() {
    if (depth_ > 0 || restoring_ || undone_.empty() || !IsShown(undone_.back().shownBefore.Get()))
        return false;
    Item item = std::move(undone_.back());
    undone_.pop_back();
    Restore(item, false);
    done_.push_back(std::move(item));
    return true;
}

void SceneUndo::Restore(const Item& item, bool before) {
    restoring_ = true;
    scene_.BeginUpdate();
    for (const auto& record : item.records)
        record->TakeOut(before);
    for (const auto& record : item.records)
        record->Restore(before);
    scene_.EndUpdate();
    restoring_ = false;
}

std::vector<String> SceneUndo::GetUndoTexts() const {
    std::vector<String> texts;
    for (const Item& item : done_)
        texts.push_back(item.text);
    return texts;
}

}  // namespace qn::k3

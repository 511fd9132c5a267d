#pragma once

#include "frame/host/undo.h"

#include <map>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

namespace qn::k3 {

class Layer;
class Scene;

/// One recorded piece of state: what it was when it was recorded, and what it was at the end of the item.
class UndoRecord {
public:
    virtual ~UndoRecord() = default;
    /// Keeps the present state as the state after.
    virtual void Finish() = 0;
    /// Takes out what does not stand in the wanted state; all records of an item do that before any puts
    /// something in.
    virtual void TakeOut(bool before) { (void)before; }
    virtual void Restore(bool before) = 0;
};

/// Records changes of one scene. Besides what it is told it notices by itself, while an item is open, changes
/// of child lists, of the scene's arrays, of layers and of the selection, and which structure is shown, so
/// that what was deleted comes back in its place. While the scene shows another structure than the one that
/// an item changed, the item can be neither taken back nor done again.
class SceneUndo final : public UndoRecorder {
public:
    explicit SceneUndo(Scene& scene) : scene_(scene) {}

    void BeginItem(const String& text) override;
    void EndItem(const wchar_t* text) override;
    void RecordAttributes(Node* node, int reserved) override;
    void RecordNodeAdded(Node* node, int reserved) override;
    void RecordName(Node* node, int reserved) override;
    void RecordObject(Node* node, int reserved) override;
    void RecordTransform(Node* node, int reserved, int reserved2) override;
    void RecordTrack(Node* node, int reserved) override;
    void RecordParam(Extension* object, int id, const Var& value) override;
    bool Undo() override;
    bool Redo() override;

    void BeforeChildrenChange(Node& parent);
    void BeforeListedChange(Node& node);
    void BeforeMembersChange(Layer& layer);
    void BeforeArraysChange();
    /// The texts of the items that can be taken back, the oldest first.
    std::vector<String> GetUndoTexts() const;

private:
    struct Item {
        String text;
        std::vector<std::unique_ptr<UndoRecord>> records;
        Weak<Interface> shownBefore, shownAfter;  // the structure; null where the scene had none
    };
    enum class Topic { kFields, kChildren, kTrack, kParam, kListed, kMembers, kArrays };

    /// Whether the scene shows that structure.
    bool IsShown(const Interface* structure) const;
    bool IsOpen() const { return depth_ > 0 && !restoring_; }
    /// The record of that topic in the open item; made by `make` if there is none. Null outside of an item.
    template <class Make>
    UndoRecord* Keep(Topic topic, const void* object, int detail, Make&& make);
    void RecordFields(Node* node, unsigned kinds);
    void Restore(const Item& item, bool before);

    Scene& scene_;
    int depth_ = 0;
    bool restoring_ = false;
    Item open_;
    std::map<std::tuple<Topic, const void*, int>, UndoRecord*> known_;  // the records of the open item
    std::vector<Item> done_, undone_;
};

}  // namespace qn::k3

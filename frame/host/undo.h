#pragma once

#include "frame/host/extension.h"
#include "frame/host/string.h"
#include "frame/host/var.h"

namespace qn::k3 {

class Node;

/// Records what is about to change, and really takes it back: one item restores the exact state before,
/// deletions included. Record calls outside an item do nothing.
class UndoRecorder {
public:
    virtual void BeginItem(const String& text) = 0;
    virtual void EndItem(const wchar_t* text) = 0;
    virtual void RecordAttributes(Node* node, int reserved) = 0;
    virtual void RecordNodeAdded(Node* node, int reserved) = 0;
    virtual void RecordName(Node* node, int reserved) = 0;
    virtual void RecordObject(Node* node, int reserved) = 0;
    virtual void RecordTransform(Node* node, int reserved, int reserved2) = 0;
    virtual void RecordTrack(Node* node, int reserved) = 0;
    /// One parameter of an object before it changes.
    virtual void RecordParam(Extension* object, int id, const Var& value) = 0;
    /// False if there is nothing to take back or do again, or if another structure is shown than at that
    /// time.
    virtual bool Undo() = 0;
    virtual bool Redo() = 0;

protected:
    ~UndoRecorder() = default;
};

}  // namespace qn::k3

#pragma once

#include "frame/host/collections.h"
#include "frame/host/var.h"

namespace qn {

class Extension;

/// Names an object inside a model of an outside system.
class UniqueId {
public:
    /// The number of the object within its model.
    class ObjectID {
    public:
        explicit ObjectID(const Var& value) : value_(value) {}
        operator const Var&() const { return value_; }

    private:
        Var value_;
    };

    UniqueId() = default;
    UniqueId(VarMap* model, const Var& objectId) : model_(model), objectId_(objectId) {}

    /// Both parts are there.
    bool IsValid() const { return model_ && objectId_.IsSet(); }
    /// Borrowed, or null.
    VarMap* GetModel() const { return model_.Get(); }
    ObjectID GetObjectId() const { return ObjectID(objectId_); }

private:
    Counted<VarMap> model_;
    Var objectId_;
};

/// The id kept with the object; invalid if it has none.
UniqueId GetUniqueID(const Extension* object);
/// An invalid id takes the present one away.
void SetUniqueID(Extension* object, const UniqueId& id);

}  // namespace qn

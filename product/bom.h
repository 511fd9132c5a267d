#pragma once

#include "frame/host/collections.h"
#include "frame/host/entity.h"
#include "frame/host/var.h"

namespace qn::k3 {

class Node;

inline constexpr const char* kBomKey = "qn.k3.bom";
/// The event of a scene, with the integer value 0, that tells of any change of its structures.
inline constexpr unsigned kBomEvent = 3300;

/// One of several top-level structures of a scene, each with its own nodes and layers. One is current: its
/// nodes are the scene's. Class key "qn.k3.bom".
class Bom : public Entity {
public:
    explicit Bom(Scene* scene = nullptr) : Entity(scene, kTypeBom) {}

    /// Makes the structure one of its scene's. The first takes over what the scene shows, or empties the
    /// scene if `empty`; a later one gets copies, or nothing. kWrongState without a scene or if done before;
    /// kWriteFailed if the root or a copy cannot be made.
    virtual ResultEnum Initialize(const Var& name, bool empty) = 0;
    /// Lists nodes and layers anew from the scene. kWrongState without a scene; kWriteFailed unless current.
    virtual ResultEnum Update() = 0;
    /// Makes this the structure that the scene shows; nothing happens if it is. kWrongState without a scene;
    /// kWriteFailed without a current structure or before `Initialize`.
    virtual ResultEnum Activate() = 0;
    /// The `VarArray` of top-level nodes, shared; empty before `Initialize`.
    virtual Var GetNodes() const = 0;
    /// The node that keeps the nodes while another structure is current, borrowed, or null.
    virtual Node* GetRootNode() const = 0;
    /// The layers as they were when this last listed what the scene shows, or null before that. Shares the
    /// scene's array then; after a load from a file it is an array of its own, also while this is current.
    virtual Counted<InterfaceArray> GetLayers() const = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::k3::Bom");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override { return CastThrough<Bom, Entity>(this, wanted); }
};

}  // namespace qn::k3

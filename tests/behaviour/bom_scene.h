#pragma once

#include "frame/host/scene_document.h"
#include "product/bom.h"

#include <functional>
#include <string>
#include <vector>

namespace qn::test {

/// Notes what a scene tells, in order, and may look around at that time.
class SceneEar final : public ReferenceTarget {
public:
    using ReferenceTarget::OnNotify;
    ResultEnum OnNotify(const Message& message) override;

    std::vector<Message> heard;
    std::function<void(const Message&)> look;
};

/// A scene whose structures and events can be told as text.
struct BomScene {
    BomScene();

    /// A new last child of `parent`, or a new top-level node.
    k3::Node* Node(const wchar_t* name, k3::Node* parent = nullptr) const;
    /// A top-level node that stays with the scene whatever is shown.
    k3::Node* Fixture(const wchar_t* name) const;
    k3::Viewport* View(const wchar_t* name, k3::ViewKind kind, k3::Node* camera = nullptr) const;
    /// A structure of this scene that was not initialised.
    Counted<k3::Bom> NewBom() const;
    /// Expects that it can be initialised.
    Counted<k3::Bom> AddBom(const wchar_t* name, bool empty = false) const;

    /// What stands below the scene: "car(wheel wheel) lamp".
    std::string Shown() const;
    k3::Bom* Current() const;
    /// Names of all structures of the scene, in order.
    std::vector<std::string> Boms() const;
    /// How many events told of a change of structures; expects the value 0 in each.
    int BomEvents() const;

    Counted<k3::Scene> scene = Make<k3::Scene>();
    Counted<SceneEar> ear = Make<SceneEar>();
};

/// Names of the nodes of a structure, with what is below them.
std::string NodesOf(const k3::Bom& bom);
/// Names of the children of its root, with what is below them.
std::string Kept(const k3::Bom& bom);
/// The node at that place of its list.
k3::Node* NodeAt(const k3::Bom& bom, int place);

}  // namespace qn::test

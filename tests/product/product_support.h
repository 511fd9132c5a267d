#pragma once

#include "frame/host/scene_document.h"
#include "product/bom_impl.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace qn::test {

/// A named last child, borrowed.
k3::Node* AddNode(k3::Node& parent, const char* name);
/// The names of a subtree, "a(b c(d))".
std::string TreeOf(const k3::Node& node);
/// The trees of all children, "a(b) c".
std::string ShownBy(const k3::Node& parent);
/// The trees of the nodes that a structure lists.
std::string NodesOf(const k3::Bom& bom);

/// The scene as a file.
std::string BytesOf(k3::Scene& scene);
/// The scene as a file gives it back; that saves as the same bytes.
Counted<k3::Scene> Reloaded(k3::Scene& scene);
/// A structure of the scene, borrowed; null for an index of none.
k3::Bom* BomAt(k3::Scene& scene, int index);

/// A new structure of the scene, initialised.
Counted<k3::BomImpl> AddBom(k3::Scene& scene, const wchar_t* name, bool empty = false);
/// A viewport of that kind that looks through a new node of the scene which stops instancing, borrowed.
k3::Viewport* AddCamera(k3::Scene& scene, const char* name, k3::ViewKind kind);

/// Writes down what a scene tells.
class SceneObserver final : public ReferenceTarget {
public:
    ResultEnum OnNotify(const Message& message) override {
        messages.push_back(message);
        return ResultEnum::kSuccess;
    }
    using ReferenceTarget::OnNotify;
    /// How often it heard of a changed structure.
    int BomEvents() const;
    std::vector<Message> messages;
};

/// Looks around whenever a scene tells of a changed structure.
class BomEventProbe final : public ReferenceTarget {
public:
    explicit BomEventProbe(std::function<void()> look) : look_(std::move(look)) {}
    ResultEnum OnNotify(const Message& message) override {
        if (message.code == k3::kBomEvent) look_();
        return ResultEnum::kSuccess;
    }
    using ReferenceTarget::OnNotify;

private:
    std::function<void()> look_;
};

/// A scene "a(b c) d".
class BomScene : public testing::Test {
protected:
    k3::Bom* Current() const { return Cast<k3::Bom>(k3::BomHelper(scene_.Get()).GetCurrentBom()); }
    std::string Shown() const { return ShownBy(*scene_); }

    const Counted<k3::Scene> scene_ = Make<k3::Scene>();
    k3::Node* const a_ = AddNode(*scene_, "a");
    k3::Node* const b_ = AddNode(*a_, "b");
    k3::Node* const c_ = AddNode(*a_, "c");
    k3::Node* const d_ = AddNode(*scene_, "d");
};

}  // namespace qn::test

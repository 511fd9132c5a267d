#pragma once

#include "frame/host/scene_document.h"
#include "graph/instance.h"
#include "graph/reference.h"
#include "services/hierarchy_checker.h"
#include "tests/support/recording_context.h"

#include <string>
#include <vector>

namespace qn::test {

using Lines = std::vector<std::string>;

/// A scene, the validator by class key and a log.
struct CheckerScene {
    /// What the validator says to the hierarchy and to the layers, with the log.
    bool Sound() const { return checker->ValidateHierarchy(scene.Get(), log.Get()); }
    bool LayersSound() const { return checker->ValidateLayers(scene.Get(), log.Get()); }
    /// What was logged so far; forgets it.
    Lines Log() const;

    Counted<k3::Scene> scene = Make<k3::Scene>();
    Counted<RecordingContext> log = MakeContext();
    Counted<graph::HierarchyChecker> checker = NewChecker();

    static Counted<graph::HierarchyChecker> NewChecker();
};

/// A new use of a new definition of that name, last child of the definition of `parent`; borrowed.
graph::Instance* AddUse(graph::Instance& parent, const wchar_t* name);
/// A node of that name that shows the use, and nodes for all uses below.
k3::Node* ShowUse(k3::Node& parent, graph::Instance& use);

/// "car(wheel lamp)" as definitions and as nodes.
struct CheckedCar : CheckerScene {
    CheckedCar();
    Counted<graph::Instance> use;
    graph::Instance *wheelUse, *lampUse;
    k3::Node *car, *wheel, *lamp;
};

inline const char* const kNoLamp = "Node ['lamp'] does not have an associated instance.";
inline const char* const kNoWheel = "Node ['wheel'] does not have an associated instance.";

std::string CountDiffers(const std::string& node);
std::string ObjectsDiffer(const std::string& node, const std::string& instance, const std::string& reference);
std::string MetadataLost(const std::string& node);

}  // namespace qn::test

#pragma once

#include "construction/hierarchy_factory.h"
#include "frame/host/scene.h"
#include "graph/instance.h"
#include "graph/reference.h"
#include "operations/hierarchy_operation_impl.h"
#include "tests/support/recording_context.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace qn::test {

using graph::Prop::kBsId;
using graph::Prop::kExternalIds;
using graph::Prop::kMetadata;
using graph::Prop::kName;
using graph::Prop::kOrigin;

/// How the classes that the operations reach by key behave, and what was asked of them.
struct Partners {
    bool canBeMade = true;  ///< else their keys give strangers, which are as good as nothing
    bool answer = true;     ///< what their operations answer
    int made = 0;           ///< how often one of their keys was to be made
    std::vector<std::string> calls;
    Counted<graph::HierarchyFactory> factory;  ///< if set, what its key gives
    const k3::Scene* scene = nullptr;          ///< which scene calls name "scene"; others are "?"
    const Context* context = nullptr;          ///< which context calls name "context"
};
/// One for the program; each test starts with `Partners() = {}` (see `OperationTest`).
Partners& ThePartners();

inline std::string Utf8(const Var& value) {
    return value.ToText().ToUtf8();
}

/// A scene with nodes, and the operation object that works on it.
class OperationTest : public testing::Test {
protected:
    OperationTest();
    ~OperationTest() override;

    /// A new last child of `parent` (a top node for null), with a name.
    k3::Node* AddNode(const char* name, k3::Node* parent = nullptr);
    /// A node with an instance of the definition (a new one for null).
    k3::Node* AddUse(const char* name, graph::Reference* reference = nullptr, k3::Node* parent = nullptr);
    /// A node with an instance of no definition.
    k3::Node* AddBareUse(const char* name);
    static graph::Instance* InstanceOf(const k3::Node* node);
    static graph::Reference* ReferenceOf(const k3::Node* node);

    using Arguments = std::vector<std::pair<int, Var>>;
    /// Runs a method on the scene.
    int Run(int method, const Arguments& arguments = {}, Context* context = nullptr);
    /// Runs a method with these arguments alone.
    int RunWithoutScene(int method, const Arguments& arguments = {}, Context* context = nullptr);

    const Counted<k3::Scene> scene = Make<k3::Scene>();
    const Counted<graph::HierarchyOperationImpl> operation = Make<graph::HierarchyOperationImpl>();
    const Counted<RecordingContext> context = MakeContext();
};

/// Takes the ids that the classes of the graph need for tests.
Counted<graph::Reference> MakeReference(const char* bsId = nullptr);

/// A map of one entry.
Var MapOf(const char* key, const Var& value);

/// A private table of metadata, with true for each key.
Counted<VarMap> MetadataOf(const std::vector<std::string>& keys);
/// The keys of the metadata, joined by blanks; "(none)" without any map.
std::string KeysOf(const Extension& object);

/// The host's gate, shut while it lives.
class ShutGate {
public:
    ShutGate();
    ~ShutGate();
};

}  // namespace qn::test

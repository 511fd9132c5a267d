#pragma once

#include "frame/host/generator.h"
#include "graph/node_instancing.h"
#include "tests/graph/graph_support.h"
#include "tests/support/recording_context.h"
#include "tests/support/static_module.h"
#include "tests/support/temp_folder.h"

namespace qn::test {

/// Turns each node into an instance of a reference of its own, in node order. A node that carries an instance
/// keeps it, and the reference that this one uses.
class SimpleFactory final : public Extension, public NodeInstancing {
public:
    static inline int calls = 0;

    Counted<Reference> CreateReferenceFromNodeWithMaps(k3::Node* node, LookupTable* table, const String& id,
                                                       NodeToInstance& nodes,
                                                       InstanceToNodes& instances) override;
    void* CastTo(const ClassRecord& wanted) override {
        return wanted.name == NodeInstancing::StaticClass().name ? NodeInstancing::CastTo(wanted)
                                                                 : Extension::CastTo(wanted);
    }
};

/// Stands for the class that the key of hierarchy generators names.
class SimpleGenerator final : public k3::Generator {
public:
    ResultEnum Generate(Extension*, Context*) override { return ResultEnum::kSuccess; }
    const char* GetInterfaceName() const override { return ClassKey::kHierarchyGenerator; }
    bool IsTypeOf(const char* name) const override {
        return EqualKeys(name, ClassKey::kHierarchyGenerator) || Generator::IsTypeOf(name);
    }
};

/// A table bound to a scene, and a scene file that each test fills before it is loaded.
class FileFixture : public testing::Test {
protected:
    FileFixture();
    ~FileFixture() override;

    /// Writes `file` and gives its path.
    String SaveFile(const char* name = "part.qn");
    Counted<ReferenceImpl> LoadFile(const wchar_t* id = L"part", const Var& options = Var());
    Counted<Reference> Load(const String& path, const wchar_t* id, const Var& options = Var()) {
        return table->LoadFileIntoScene(path, id, options, Guid());
    }

    static k3::Node* AddNode(k3::Node& parent, const wchar_t* name, Instance* instance = nullptr);
    k3::Viewport* AddViewport(const wchar_t* name, Interface* owner = nullptr);
    std::vector<std::string> ViewportNames() const;
    static Var MapOf(const wchar_t* key, const Var& value);
    static Interface* OwnerOf(const k3::Viewport& viewport) {
        return viewport.GetParamVar(0x8112).ToInterface();
    }
    /// The scene's viewport of that name.
    k3::Viewport* Loaded(const wchar_t* name) const;

    /// The file's top node shows a use of `part`, with `door` and, in it, `lock` below.
    void FillWithHierarchy();

    const StaticModule module_{{{ClassKey::kHierarchyFactory, &MakeOf<SimpleFactory>},
                                {ClassKey::kHierarchyGenerator, &MakeOf<SimpleGenerator>}}};
    TempFolder folder;
    Counted<k3::Scene> scene = Make<k3::Scene>();
    Counted<RecordingContext> context = MakeContext();
    Counted<LookupTableImpl> table = Make<LookupTableImpl>();

    Counted<k3::Scene> file = Make<k3::Scene>();
    k3::Node* top = nullptr;
    k3::Node* doorNode = nullptr;
    k3::Node* lockNode = nullptr;
    Counted<ReferenceImpl> part;
    Counted<InstanceImpl> root;
    Counted<InstanceImpl> door;
    Counted<InstanceImpl> lock;
};

}  // namespace qn::test

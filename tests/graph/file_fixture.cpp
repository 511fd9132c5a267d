#include "tests/graph/file_fixture.h"

#include "engine/stream/scene_file.h"

namespace qn::test {

Counted<Reference> SimpleFactory::CreateReferenceFromNodeWithMaps(k3::Node* node, LookupTable* table,
                                                                  const String& id, NodeToInstance& nodes,
                                                                  InstanceToNodes& instances) {
    ++calls;
    Counted<Instance> instance(Cast<Instance>(node->GetParamObject(Param::kInstance)));
    Counted<Reference> reference(instance ? instance->GetReference() : nullptr);
    if (!reference) {
        reference = table->GetOrCreateReference(id);
        instance = reference->CreateInstanceWithId(String());
    }
    nodes.Set(node, instance.Get());
    instances.Add(instance.Get(), node);
    for (k3::Node* child = node->GetFirstChild(); child; child = child->GetNextSibling()) {
        CreateReferenceFromNodeWithMaps(child, table, String(), nodes, instances);
        reference->AddChild(nodes.Find(child));
    }
    return reference;
}

FileFixture::FileFixture() {
    SimpleFactory::calls = 0;
    table->SetSceneAndContext(scene.Get(), context.Get());
    top = file->CreateEmptyNode(0, 0, 0);
    top->SetName(L"top");
}

FileFixture::~FileFixture() = default;

String FileFixture::SaveFile(const char* name) {
    const String path = folder.File(name);
    const auto saving = MakeContext();
    EXPECT_TRUE(SaveSceneFile(*file, path, *saving));
    return path;
}

Counted<ReferenceImpl> FileFixture::LoadFile(const wchar_t* id, const Var& options) {
    return CountedCast<ReferenceImpl>(Load(SaveFile(), id, options));
}

k3::Node* FileFixture::AddNode(k3::Node& parent, const wchar_t* name, Instance* instance) {
    k3::Node* node = parent.CreateChildNode(0, 0, 0);
    node->SetName(name);
    if (instance) node->SetParamObject(Param::kInstance, instance);
    return node;
}

k3::Viewport* FileFixture::AddViewport(const wchar_t* name, Interface* owner) {
    k3::Viewport* viewport = file->CreateViewport(name);
    if (owner) viewport->SetParamVar(Param::kViewportTarget, Var(owner, 0));
    return viewport;
}

std::vector<std::string> FileFixture::ViewportNames() const {
    std::vector<std::string> names;
    const auto all = scene->GetAllViewports();
    for (int i = 0; i < all->GetCount(); ++i)
        names.push_back(Cast<k3::Viewport>(all->Get(i))->GetName().ToUtf8());
    return names;
}

k3::Viewport* FileFixture::Loaded(const wchar_t* name) const {
    const auto all = scene->GetAllViewports();
    for (int i = 0; i < all->GetCount(); ++i)
        if (auto* viewport = Cast<k3::Viewport>(all->Get(i)); viewport->GetName() == name) return viewport;
    ADD_FAILURE() << "no such viewport";
    return nullptr;
}

Var FileFixture::MapOf(const wchar_t* key, const Var& value) {
    Var map;
    map.At(key) = value;
    return map;
}

void FileFixture::FillWithHierarchy() {
    part = MakeReference();
    const auto doorPart = MakeReference();
    root = MakeInstance(part.Get());
    door = MakeInstance(doorPart.Get());
    lock = MakeInstance(MakeReference().Get());
    part->AddChild(door.Get());
    doorPart->AddChild(lock.Get());
    top->SetParamObject(Param::kInstance, root.Get());
    doorNode = AddNode(*top, L"door", door.Get());
    lockNode = AddNode(*doorNode, L"lock", lock.Get());
}

}  // namespace qn::test

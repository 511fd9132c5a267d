#include "tests/graph/graph_support.h"

#include "engine/stream/object_file.h"
#include "graph/post_processing_instruction_impl.h"
#include "tests/support/recording_context.h"
#include "tests/support/static_module.h"

namespace qn::test {

namespace {

const StaticModule g_module({
    {ClassKey::kInstance, &MakeOf<InstanceImpl>},
    {ClassKey::kReference, &MakeOf<ReferenceImpl>},
    {ClassKey::kPersistentSelector, &MakeOf<PersistentSelectorImpl>},
    {ClassKey::kLookupTable, &MakeOf<LookupTableImpl>},
    {ClassKey::kPostProcessingInstruction, &MakeOf<PostProcessingInstructionImpl>},
});

}  // namespace

void AddChildren(Reference& parent, std::initializer_list<Instance*> children) {
    for (Instance* child : children)
        parent.AddChild(child);
}

Selector PathOf(std::initializer_list<Instance*> elements) {
    Selector selector;
    for (Instance* element : elements)
        selector.AppendPathElement(element);
    return selector;
}

Var IdsOf(std::initializer_list<const wchar_t*> ids) {
    Var path(VarArray::Create());
    for (const wchar_t* id : ids)
        path.ToArray()->Add(Var(id));
    return path;
}

Counted<PersistentSelectorImpl> StoredIds(std::initializer_list<const wchar_t*> ids) {
    auto stored = Make<PersistentSelectorImpl>();
    stored->idPath = IdsOf(ids);
    return stored;
}

Counted<PersistentSelectorImpl> LivePath(std::initializer_list<Instance*> elements) {
    auto live = Make<PersistentSelectorImpl>();
    for (Instance* element : elements)
        live->path.emplace_back(element);
    return live;
}

std::vector<Instance*> Targets(const PersistentSelectorImpl& selector) {
    std::vector<Instance*> targets;
    for (const auto& element : selector.path)
        targets.push_back(element.Get());
    return targets;
}

Var LinksTo(std::initializer_list<Interface*> selectors) {
    Var list(VarArray::Create());
    for (Interface* selector : selectors) {
        Var row(VarArray::Create(1));
        row.At(0) = Var(selector, 1);
        list.ToArray()->Add(row);
    }
    return list;
}

Counted<InstanceImpl> Known(LookupTable& table, const wchar_t* id) {
    return CountedCast<InstanceImpl>(table.GetOrCreateReference(String())->CreateInstanceWithId(id));
}

Counted<Interface> Reloaded(Interface& root) {
    const auto context = MakeContext();
    const std::string bytes = SaveToBytes(root, *context);
    auto loaded = LoadFromBytes(bytes, *context);
    EXPECT_TRUE(context->Texts().empty());
    return loaded;
}

Chain::Chain(int levels, LookupTable* table) {
    for (int i = 0; i < levels; ++i)
        references.push_back(MakeReference(table));
    for (int i = 0; i + 1 < levels; ++i) {
        instances.push_back(CountedCast<InstanceImpl>(references[i + 1]->CreateInstance()));
        references[i]->AddChild(instances.back().Get());
    }
    root = references.front();
}

}  // namespace qn::test

#include "tests/behaviour/element_support.h"

#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

namespace qn::test {

using namespace graph;

namespace {

constexpr int kPropertiesChunk = 0x1000;
constexpr int kInstanceSelectorsChunk = 0x1002;
constexpr int kReferenceSelectorsChunk = 0x1003;
constexpr int kSelectorPathChunk = 0x1001;

Counted<PersistentSelector> SelectorIn(ReferenceSource& element, int chunk, const Var& key) {
    const Var map = SavedMap(element, chunk);
    const Var* entry = map.Lookup(key);
    return Counted<PersistentSelector>(entry ? Cast<PersistentSelector>(*entry) : nullptr);
}

}  // namespace

Counted<Reference> NewReference() {
    return CreateAs<Reference>(ClassKey::kReference);
}

Counted<Instance> NewInstance() {
    return CreateAs<Instance>(ClassKey::kInstance);
}

Counted<LookupTable> NewTable() {
    return CreateAs<LookupTable>(ClassKey::kLookupTable);
}

Counted<Reference> NewReferenceIn(LookupTable& table) {
    return table.GetOrCreateReference(String());
}

Counted<Instance> EnterInstance(LookupTable& table, const wchar_t* id) {
    auto instance = NewReferenceIn(table)->CreateInstance();
    instance->SetProperty(Prop::kLocalId, Var(id));
    table.RegisterInstance(instance.Get());
    return instance;
}

Var IdPath(std::initializer_list<const wchar_t*> ids) {
    const auto array = VarArray::Create();
    for (const wchar_t* id : ids)
        array->Add(Var(id));
    return Var(array);
}

Var ArrayOf(std::initializer_list<Var> values) {
    const auto array = VarArray::Create();
    for (const Var& value : values)
        array->Add(value);
    return Var(array);
}

Var MapOf(std::initializer_list<std::pair<Var, Var>> rows) {
    const auto map = VarMap::Create();
    for (const auto& [key, value] : rows)
        map->At(key) = value;
    return Var(map);
}

Selector PathOf(std::initializer_list<Instance*> path) {
    Selector selector;
    for (Instance* instance : path)
        selector.AppendPathElement(instance);
    return selector;
}

std::vector<Instance*> ElementsOf(const Selector& selector) {
    std::vector<Instance*> elements;
    for (int i = 0; i < selector.GetPathElementCount(); ++i)
        elements.push_back(selector.GetPathElement(static_cast<unsigned>(i)));
    return elements;
}

Counted<ChunkTape> TapeOf(ReferenceSource& object) {
    auto tape = Make<ChunkTape>();
    EXPECT_EQ(object.Save(tape.Get(), MakeContext().Get()), ResultEnum::kSuccess);
    EXPECT_FALSE(tape->HasFailed());
    return tape;
}

ResultEnum Feed(ReferenceSource& receiver, int chunk, Interface* object) {
    return receiver.HandleChunk(chunk, ChunkTape::Of(chunk, object).Get(), MakeContext().Get());
}

Var SavedMap(ReferenceSource& object, int chunk) {
    return Var(Cast<VarMap>(TapeOf(object)->ObjectAt(chunk)));
}

bool SavesProperty(ReferenceSource& element, PropEnum id) {
    return SavedMap(element, kPropertiesChunk).Lookup(Key(id)) != nullptr;
}

Counted<PersistentSelector> LiveSelector(std::initializer_list<Instance*> path) {
    auto selector = CreateAs<PersistentSelector>(ClassKey::kPersistentSelector);
    const auto array = VarArray::Create();
    for (Instance* instance : path)
        array->Add(Var(instance));
    Feed(*selector, kSelectorPathChunk, array.Get());
    return selector;
}

Counted<PersistentSelector> IdSelector(LookupTable& table, const Var& ids) {
    const auto carrier = NewReferenceIn(table);
    carrier->AddSelectorPath(ids);
    return SelectorUnder(*carrier, Var(0));
}

std::vector<Instance*> LivePath(PersistentSelector& selector) {
    const auto tape = TapeOf(selector);
    std::vector<Instance*> path;
    if (const auto* array = Cast<VarArray>(tape->ObjectAt(kSelectorPathChunk))) {
        for (int i = 0; i < array->GetCount(); ++i)
            path.push_back(Cast<Instance>(array->Get(i)));
    }
    return path;
}

Counted<PersistentSelector> SelectorUnder(Instance& instance, const Var& key) {
    return SelectorIn(instance, kInstanceSelectorsChunk, key);
}

Counted<PersistentSelector> SelectorUnder(Reference& reference, const Var& key) {
    return SelectorIn(reference, kReferenceSelectorsChunk, key);
}

void SetSelectors(Instance& instance, std::initializer_list<PersistentSelector*> selectors) {
    const auto map = VarMap::Create();
    for (PersistentSelector* selector : selectors)
        map->At(map->GetCount()) = Var(selector);
    Feed(instance, kInstanceSelectorsChunk, map.Get());
}

std::vector<Instance*> PathFor(LookupTable& table, PersistentSelector& selector) {
    Selector out;
    table.ResolvePersistentSelector(out, &selector);
    return ElementsOf(out);
}

}  // namespace qn::test

#pragma once

#include "frame/host/api.h"
#include "frame/host/collections.h"
#include "graph/instance.h"
#include "graph/lookup_table.h"
#include "graph/persistent_selector.h"
#include "graph/reference.h"
#include "tests/behaviour/chunk_tape.h"

#include <initializer_list>
#include <utility>
#include <vector>

namespace qn::test {

/// Objects by class key, each with the caller's count alone.
Counted<graph::Reference> NewReference();
Counted<graph::Instance> NewInstance();
Counted<graph::LookupTable> NewTable();

/// A definition of the table with the next id.
Counted<graph::Reference> NewReferenceIn(graph::LookupTable& table);
/// A use of a definition of its own, entered in the table under the local id; takes the place of what had it.
Counted<graph::Instance> EnterInstance(graph::LookupTable& table, const wchar_t* id);

/// An array of texts.
Var IdPath(std::initializer_list<const wchar_t*> ids);
Var ArrayOf(std::initializer_list<Var> values);
Var MapOf(std::initializer_list<std::pair<Var, Var>> rows);
graph::Selector PathOf(std::initializer_list<graph::Instance*> path);
std::vector<graph::Instance*> ElementsOf(const graph::Selector& selector);

/// What an object writes; expects that it succeeds.
Counted<ChunkTape> TapeOf(ReferenceSource& object);
/// Hands an object to `HandleChunk` as an object chunk.
ResultEnum Feed(ReferenceSource& receiver, int chunk, Interface* object);
/// The map in the object chunk of that id as it was written; an empty value if there is none.
Var SavedMap(ReferenceSource& object, int chunk);
/// Whether the properties that the element writes have the key, even with an empty value.
bool SavesProperty(ReferenceSource& element, graph::PropEnum id);

/// A stored selector that has a live path alone.
Counted<graph::PersistentSelector> LiveSelector(std::initializer_list<graph::Instance*> path);
/// A stored selector that has ids alone, whether or not they are known.
Counted<graph::PersistentSelector> IdSelector(graph::LookupTable& table, const Var& ids);
/// The live path of a stored selector without its dead entries.
std::vector<graph::Instance*> LivePath(graph::PersistentSelector& selector);
/// The stored selector under a key of the element's map: chunk 0x1002 of an instance, 0x1003 of a reference.
Counted<graph::PersistentSelector> SelectorUnder(graph::Instance& instance, const Var& key);
Counted<graph::PersistentSelector> SelectorUnder(graph::Reference& reference, const Var& key);
/// An instance with these stored selectors under 0, 1, ...
void SetSelectors(graph::Instance& instance, std::initializer_list<graph::PersistentSelector*> selectors);
/// The path that the selector has for the table: the live one, else what the ids name.
std::vector<graph::Instance*> PathFor(graph::LookupTable& table, graph::PersistentSelector& selector);

}  // namespace qn::test

#include "importers/gltf/assembly_tables.h"

#include "importers/gltf/gltf_extras_keys.h"

#include <algorithm>

namespace qn::gltf {
namespace {

namespace Word = gltf_extras::Word;

const VarMap* MapAt(const Var& value, const char* key) {
    const Var* found = value.IsMap() ? value.Lookup(key) : nullptr;
    return found ? found->ToMap() : nullptr;
}

const VarArray* ArrayAt(const VarMap& map, const char* key) {
    const Var* found = map.Lookup(Var(key));
    return found ? found->ToArray() : nullptr;
}

/// A whole number from 0 on; kNone for anything else.
std::uint32_t IndexOf(const Var* value) {
    std::int64_t number = -1;
    if (!value || (value->GetTag() != VarTag::kInt && value->GetTag() != VarTag::kInt64)) return kNone;
    value->copy_to(number);
    return number >= 0 && number < kNone ? static_cast<std::uint32_t>(number) : kNone;
}

std::uint32_t IndexAt(const VarMap& map, const char* key) {
    return IndexOf(map.Lookup(Var(key)));
}

/// What a node says of itself.
struct NodeWords {
    std::uint32_t use = kNone;
    bool isInner = false;
};

NodeWords WordsOf(const Model& model, const Node& node) {
    NodeWords words;
    words.use = node.use;
    if (node.extras == kNone) return words;
    const VarMap* extras = model.extras[node.extras].ToMap();
    const Var* value = extras ? extras->LookupText(L"assembly") : nullptr;
    const VarMap* told = value ? value->ToMap() : nullptr;
    if (!told) return words;
    words.use = IndexOf(told->LookupText(L"use"));
    const Var* inner = told->LookupText(L"inner");
    words.isInner = inner && inner->ToBool();
    return words;
}

std::size_t NumbersOf(PlaceKind kind) {
    switch (kind) {
        case PlaceKind::kIdentity:
            return 0;
        case PlaceKind::kTranslation:
            return 3;
        case PlaceKind::kMotion:
            return 7;
        case PlaceKind::kParts:
            return 10;
        case PlaceKind::kMatrix:
            return 16;
    }
    return 0;
}

bool HaveSamePlace(const Model& model, const Node& left, const Node& right) {
    if (left.placeKind != right.placeKind) return false;
    const double* numbers = model.numbers.data();
    return std::equal(numbers + left.place, numbers + left.place + NumbersOf(left.placeKind),
                      numbers + right.place);
}

/// Walks the nodes below the frame beside the tables.
class NodeCheck {
public:
    NodeCheck(const Model& model, AssemblyTables& tables) : model_(model), tables_(tables) {}

    bool Run() {
        const Node& frame = model_.nodes[tables_.frame];
        if (frame.childCount != tables_.roots.size()) return false;
        levels_.push_back({frame.firstChild, tables_.roots.data(), frame.childCount});
        while (!levels_.empty()) {
            Level& level = levels_.back();
            if (level.next == level.count) {
                levels_.pop_back();
                continue;
            }
            const std::uint32_t at = level.next++;
            if (!Enter(model_.children[level.firstChild + at], level.uses[at])) return false;
        }
        return std::none_of(tables_.uses.begin(), tables_.uses.end(),
                            [](const UseEntry& use) { return use.firstNode == kNone; });
    }

private:
    struct Level {
        std::uint32_t firstChild;  ///< in the model's list
        const std::uint32_t* uses;
        std::uint32_t count;
        std::uint32_t next = 0;
    };

    bool Enter(std::uint32_t index, std::uint32_t wanted) {
        const Node* node = &model_.nodes[index];
        if (WordsOf(model_, *node).use != wanted) return false;
        UseEntry& use = tables_.uses[wanted];
        if (use.firstNode == kNone) use.firstNode = index;
        if (!use.isOverridden && !HaveSamePlace(model_, *node, model_.nodes[use.firstNode])) return false;
        if (const Node* inner = InnerOf(*node)) node = inner;
        const DefinitionEntry& definition = tables_.definitions[use.definition];
        if (node->mesh != definition.mesh || node->childCount != definition.useCount) return false;
        if (node->camera != kNone || node->copies != kNone) return false;
        if (node->childCount > 0)
            levels_.push_back(
                {node->firstChild, tables_.children.data() + definition.firstUse, node->childCount});
        return true;
    }

    const Node* InnerOf(const Node& node) const {
        if (node.childCount != 1 || node.mesh != kNone) return nullptr;
        const Node& child = model_.nodes[model_.children[node.firstChild]];
        return WordsOf(model_, child).isInner ? &child : nullptr;
    }

    const Model& model_;
    AssemblyTables& tables_;
    std::vector<Level> levels_;
};

}  // namespace

bool AssemblyTables::Fail(const std::string& text) {
    disagreement_ = text;
    return false;
}

bool AssemblyTables::Read(const Model& model) {
    const VarMap* tables = MapAt(model.documentExtras, Word::kAssembly);
    const Var* version = tables ? tables->Lookup(Var(Word::kVersion)) : nullptr;
    if (!version) return false;
    if (version->ToInt() != gltf_extras::kVersion)
        Fail("its tables are of version " + version->to_string().ToText().ToUtf8() + ", unknown here");
    else if (ReadRows(model, *tables))
        CheckNodes(model);
    return true;
}

bool AssemblyTables::ReadRows(const Model& model, const VarMap& tables) {
    const VarArray *definitionRows = ArrayAt(tables, Word::kDefinitions),
                   *useRows = ArrayAt(tables, Word::kUses);
    if (!definitionRows || !useRows) return Fail("a table is missing");
    frame = IndexAt(tables, Word::kFrame);
    if (frame >= model.nodes.size() || model.roots.size() != 1 || model.roots.front() != frame)
        return Fail("the frame is not the only root");
    if (!ReadDefinitions(model, *definitionRows) || !ReadUses(*useRows)) return false;
    if (tables.Lookup(Var(Word::kContainer))) {
        container = IndexAt(tables, Word::kContainer);
        if (container >= definitions.size()) return Fail("its container is missing");
        const bool isUsed = std::any_of(uses.begin(), uses.end(), [&](const UseEntry& use) {
            return use.parent == container || use.definition == container;
        });
        if (isUsed) return Fail("its container stands in the tree");
    }
    SortUses();
    const VarArray* overrideRows = ArrayAt(tables, Word::kOverrides);
    return !overrideRows || ReadOverrides(*overrideRows);
}

bool AssemblyTables::ReadDefinitions(const Model& model, const VarArray& rows) {
    definitions.resize(static_cast<std::size_t>(rows.GetCount()));
    for (int i = 0; i < rows.GetCount(); ++i) {
        DefinitionEntry& entry = definitions[static_cast<std::size_t>(i)];
        entry.row = rows.Get(i).ToMap();
        if (!entry.row) return Fail("a definition is no object");
        if (!entry.row->Lookup(Var(Word::kMesh))) continue;
        entry.mesh = IndexAt(*entry.row, Word::kMesh);
        if (entry.mesh >= model.meshes.size()) return Fail("a definition names a mesh that is missing");
    }
    return true;
}

bool AssemblyTables::ReadUses(const VarArray& rows) {
    uses.resize(static_cast<std::size_t>(rows.GetCount()));
    for (int i = 0; i < rows.GetCount(); ++i) {
        UseEntry& entry = uses[static_cast<std::size_t>(i)];
        entry.row = rows.Get(i).ToMap();
        if (!entry.row) return Fail("a use is no object");
        entry.definition = IndexAt(*entry.row, Word::kDefinition);
        if (entry.row->Lookup(Var(Word::kParent))) {
            entry.parent = IndexAt(*entry.row, Word::kParent);
            if (entry.parent >= definitions.size()) return Fail("a use names a parent that is missing");
        }
        if (entry.definition >= definitions.size()) return Fail("a use names a definition that is missing");
    }
    return true;
}

bool AssemblyTables::ReadOverrides(const VarArray& rows) {
    overrides.resize(static_cast<std::size_t>(rows.GetCount()));
    for (int i = 0; i < rows.GetCount(); ++i) {
        OverrideEntry& entry = overrides[static_cast<std::size_t>(i)];
        entry.row = rows.Get(i).ToMap();
        const VarArray* path = entry.row ? ArrayAt(*entry.row, Word::kPath) : nullptr;
        if (!path) return Fail("an override has no path");
        entry.use = IndexAt(*entry.row, Word::kUse);
        for (int k = 0; k < path->GetCount(); ++k)
            entry.path.push_back(IndexOf(&path->Get(k)));
        const bool isKnown = std::all_of(entry.path.begin(), entry.path.end(),
                                         [&](std::uint32_t use) { return use < uses.size(); });
        if (!isKnown || entry.path.empty() || entry.path.back() != entry.use)
            return Fail("the path of an override leads nowhere");
        uses[entry.use].isOverridden = true;
    }
    return true;
}

/// Lists the uses by parent, in their order (a counting sort).
void AssemblyTables::SortUses() {
    for (const UseEntry& use : uses)
        if (use.parent != kNone) ++definitions[use.parent].useCount;
    std::uint32_t first = 0;
    for (DefinitionEntry& definition : definitions) {
        definition.firstUse = first;
        first += definition.useCount;
        definition.useCount = 0;
    }
    children.resize(first);
    for (std::uint32_t i = 0; i < uses.size(); ++i) {
        if (uses[i].parent == kNone) {
            roots.push_back(i);
            continue;
        }
        DefinitionEntry& definition = definitions[uses[i].parent];
        children[definition.firstUse + definition.useCount++] = i;
    }
}

bool AssemblyTables::CheckNodes(const Model& model) {
    return NodeCheck(model, *this).Run() || Fail("its nodes were changed after it was written");
}

}  // namespace qn::gltf

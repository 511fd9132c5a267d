#include "tool/parts_fields.h"

#include "tool/failure.h"
#include "tool/metadata_text.h"

#include <algorithm>
#include <cctype>
#include <optional>
#include <set>

namespace assembly::tool {
namespace {

using Kind = PartsField::Kind;

struct BuiltIn {
    const char* name;
    Kind kind;
    const char* meaning;
};

constexpr BuiltIn kBuiltIn[] = {
    {"level", Kind::kLevel, "0 for a top, 1 for its direct components"},
    {"name", Kind::kName, "of the definition"},
    {"id", Kind::kId, "of the definition: server id, else the file's own"},
    {"server_id", Kind::kServerId, "of the definition"},
    {"quantity", Kind::kQuantity, "within the parent; in a flat list within everything"},
    {"total", Kind::kTotal, "within everything"},
    {"unit", Kind::kUnit, "what is counted"},
    {"designators", Kind::kDesignators, "names of the uses"},
    {"file", Kind::kFile, "that the definition is read from"},
};

constexpr const char* kOtherKinds = "any metadata key";
constexpr std::size_t kListedKeys = 40;

std::string Normalised(std::string name) {
    for (char& letter : name)
        letter = letter == '-' || letter == ' '
                     ? '_'
                     : static_cast<char>(std::tolower(static_cast<unsigned char>(letter)));
    return name;
}

std::optional<PartsField> FindBuiltIn(const std::string& name) {
    const std::string wanted = Normalised(name);
    for (const BuiltIn& field : kBuiltIn)
        if (wanted == field.name) return PartsField{field.kind, field.name};
    return {};
}

std::set<std::string> KeysOf(const Structure& structure) {
    std::set<std::string> keys;
    for (const Definition& definition : structure.definitions)
        CollectMetadataKeys(*definition.reference, keys);
    for (const Use& use : structure.uses)
        CollectMetadataKeys(*use.instance, keys);
    for (const Use& root : structure.roots)
        if (root.instance) CollectMetadataKeys(*root.instance, keys);
    return keys;
}

std::string ListOf(const std::set<std::string>& keys) {
    std::string list;
    for (const BuiltIn& field : kBuiltIn)
        list += (list.empty() ? "" : ", ") + std::string(field.name);
    std::size_t left = kListedKeys;
    for (const std::string& key : keys) {
        if (left-- == 0) return list + ", ... (" + std::to_string(keys.size()) + " metadata keys)";
        list += ", " + key;
    }
    return list;
}

bool EndsWithKey(const std::string& key, const std::string& end) {
    return key.size() > end.size() && key.ends_with(end) && key[key.size() - end.size() - 1] == '/';
}

PartsField FindMetadata(const std::string& name, const std::set<std::string>& keys) {
    if (keys.contains(name)) return {Kind::kMetadata, name};
    std::vector<std::string> found;
    std::copy_if(keys.begin(), keys.end(), std::back_inserter(found),
                 [&](const std::string& key) { return EndsWithKey(key, name); });
    if (found.size() == 1) return {Kind::kMetadata, found.front()};
    if (found.empty())
        throw Failure(ExitCode::kUsage, "no field \"" + name + "\"; there are: " + ListOf(keys));
    throw Failure(ExitCode::kUsage, "the field \"" + name + "\" may be " + found[0] + " or " + found[1]);
}

}  // namespace

std::string DescribePartsFields() {
    std::string text = "Fields:\n";
    for (const BuiltIn& field : kBuiltIn) {
        std::string line = "  " + std::string(field.name);
        line.resize(16, ' ');
        text += line + field.meaning + "\n";
    }
    return text + "  and " + kOtherKinds + ", as \"$QN.STEP/Description\" or its end, \"Description\"";
}

std::vector<PartsField> ResolvePartsFields(const std::vector<std::string>& names,
                                           const Structure& structure) {
    std::vector<PartsField> fields;
    std::optional<std::set<std::string>> keys;
    for (const std::string& name : names) {
        std::optional<PartsField> field = FindBuiltIn(name);
        if (!field && !keys) keys = KeysOf(structure);
        fields.push_back(field ? *field : FindMetadata(name, *keys));
    }
    return fields;
}

std::vector<std::string> DefaultPartsFields(PartsStructure structure) {
    switch (structure) {
        case PartsStructure::kMulti:
            return {"level", "name", "id", "quantity", "total"};
        case PartsStructure::kSingle:
        case PartsStructure::kFlat:
            return {"name", "id", "quantity"};
        case PartsStructure::kOccurrences:
            return {"level", "name", "designators", "id"};
    }
    return {};
}

}  // namespace assembly::tool

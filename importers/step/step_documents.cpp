#include "importers/step/step_documents.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <unordered_map>

namespace qn::step {
namespace {

constexpr std::string_view kLocationRole = "external document id and location";
constexpr std::string_view kExternalDefinition = "external definition";
/// Files that hold definitions; other documents (drawings, notes) stay metadata.
constexpr std::string_view kContentEndings[] = {".stp", ".step", ".p21", ".qn", ".gltf", ".glb"};

using FileNames = std::unordered_map<EntityId, std::string>;

bool EndsWith(std::string_view name, std::string_view ending) {
    return name.size() > ending.size() &&
           std::equal(ending.begin(), ending.end(), name.end() - static_cast<std::ptrdiff_t>(ending.size()),
                      [](char wanted, unsigned char c) { return wanted == std::tolower(c); });
}

/// The folder that an external source states, else nothing.
std::string FolderOf(const ExchangeFile& file, EntityId source) {
    const Record record = file.Get(source);
    return record.Is("EXTERNAL_SOURCE") ? TextAt(record.Attributes({"EXTERNAL_SOURCE"}), 0) : std::string();
}

/// A folder and a name in it, in the manner of any system; the name alone if it has a folder of its own.
std::string Joined(const std::string& folder, const std::string& name) {
    if (folder.empty() || name.find_first_of("/\\") != std::string::npos) return name;
    const bool ends = folder.back() == '/' || folder.back() == '\\';
    return folder + (ends ? "" : "/") + name;
}

/// File names that identification assignments give to documents.
FileNames NamedFiles(const ExchangeFile& file) {
    FileNames names;
    for (const EntityId id : file.OfKind(EntityKind::kExternalIdentification)) {
        const Params attributes =
            file.Get(id).Attributes({"IDENTIFICATION_ASSIGNMENT", "EXTERNAL_IDENTIFICATION_ASSIGNMENT",
                                     "APPLIED_EXTERNAL_IDENTIFICATION_ASSIGNMENT"});
        const Params role = file.Get(ReferenceAt(attributes, 1)).Attributes({"IDENTIFICATION_ROLE"});
        const std::string name = TextAt(attributes, 0);
        if (TextAt(role, 0) != kLocationRole || name.empty()) continue;
        const std::string path = Joined(FolderOf(file, ReferenceAt(attributes, 2)), name);
        const Params& items = ListAt(attributes, 3);
        for (std::size_t i = 0; i < items.size(); ++i)
            names.emplace(ReferenceAt(items, i), path);
    }
    return names;
}

/// The file that a document stands for; empty if it stands for none.
std::string FileOf(const ExchangeFile& file, const FileNames& names, EntityId document) {
    const auto named = names.find(document);
    if (named != names.end()) return named->second;
    const Record record = file.Get(document);
    return record.Is("DOCUMENT_FILE") ? TextAt(record.Attributes({"DOCUMENT", "DOCUMENT_FILE"}), 0)
                                      : std::string();
}

/// Definitions by the representation of their shape.
using Owners = std::unordered_multimap<EntityId, std::size_t>;

Owners OwnersOfShapes(const ExchangeFile& file, const StructureIndex& index) {
    Owners owners;
    for (const EntityId id : file.OfKind(EntityKind::kShapeDefinitionRepresentation)) {
        const Params attributes = file.Get(id).Attributes(
            {"PROPERTY_DEFINITION_REPRESENTATION", "SHAPE_DEFINITION_REPRESENTATION"});
        if (const auto row = index.Definition(index.SubjectOf(ReferenceAt(attributes, 0))))
            owners.emplace(ReferenceAt(attributes, 1), *row);
    }
    return owners;
}

void AddFile(Definition& definition, const std::string& name) {
    auto& files = definition.externalFiles;
    if (!name.empty() && std::find(files.begin(), files.end(), name) == files.end()) files.push_back(name);
}

/// A document whose "external definition" is the representation of a definition's shape holds that
/// definition.
void ReadExternalShapes(const ExchangeFile& file, const StructureIndex& index, const FileNames& names,
                        StepModel& model) {
    if (names.empty()) return;
    const Owners owners = OwnersOfShapes(file, index);
    for (const EntityId id : file.OfKind(EntityKind::kPropertyRepresentation)) {
        const Params link = file.Get(id).Attributes({"PROPERTY_DEFINITION_REPRESENTATION"});
        const auto [first, last] = owners.equal_range(ReferenceAt(link, 1));
        if (first == last) continue;
        const Params property = file.Get(ReferenceAt(link, 0)).Attributes({"PROPERTY_DEFINITION"});
        if (TextAt(property, 0) != kExternalDefinition) continue;
        const std::string name = FileOf(file, names, ReferenceAt(property, 2));
        for (auto owner = first; owner != last; ++owner)
            AddFile(model.definitions[owner->second], name);
    }
}

}  // namespace

void ReadDocuments(const ExchangeFile& file, const StructureIndex& index, StepModel& model) {
    const FileNames names = NamedFiles(file);
    for (const EntityId id : file.OfKind(EntityKind::kDocumentReference)) {
        const Params attributes =
            file.Get(id).Attributes({"DOCUMENT_REFERENCE", "APPLIED_DOCUMENT_REFERENCE"});
        const std::string name = FileOf(file, names, ReferenceAt(attributes, 0));
        const Params& items = ListAt(attributes, 2);
        for (std::size_t i = 0; i < items.size(); ++i)
            if (const auto row = index.Definition(index.SubjectOf(ReferenceAt(items, i))))
                AddFile(model.definitions[*row], name);
    }
    ReadExternalShapes(file, index, names, model);
    for (Definition& definition : model.definitions) {
        const Record record = file.Get(definition.entity);
        if (!record.Is("PRODUCT_DEFINITION_WITH_ASSOCIATED_DOCUMENTS")) continue;
        const Params attributes =
            record.Attributes({"PRODUCT_DEFINITION", "PRODUCT_DEFINITION_WITH_ASSOCIATED_DOCUMENTS"});
        const Params& documents = ListAt(attributes, 4);
        for (std::size_t i = 0; i < documents.size(); ++i)
            AddFile(definition, FileOf(file, names, ReferenceAt(documents, i)));
    }
}

std::string Definition::ContentFile() const {
    if (IsAssembly() || HasOwnGeometry()) return std::string();
    for (const std::string& name : externalFiles)
        for (const std::string_view ending : kContentEndings)
            if (EndsWith(name, ending)) {
                std::string portable = name;
                std::replace(portable.begin(), portable.end(), '\\', '/');
                return portable;
            }
    return std::string();
}

}  // namespace qn::step

#include "importers/step/step_documents.h"

#include <algorithm>
#include <unordered_map>

namespace qn::step {
namespace {

constexpr std::string_view kLocationRole = "external document id and location";

using FileNames = std::unordered_map<EntityId, std::string>;

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
        const Params& items = ListAt(attributes, 3);
        for (std::size_t i = 0; i < items.size(); ++i)
            names.emplace(ReferenceAt(items, i), name);
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

void AddFile(Definition& definition, const std::string& name) {
    auto& files = definition.externalFiles;
    if (!name.empty() && std::find(files.begin(), files.end(), name) == files.end()) files.push_back(name);
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
            if (const auto row = index.Definition(ReferenceAt(items, i)))
                AddFile(model.definitions[*row], name);
    }
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

}  // namespace qn::step

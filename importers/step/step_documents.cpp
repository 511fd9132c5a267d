#include "importers/step/step_documents.h"

#include "importers/step/part21_error.h"
#include "importers/step/step_limits.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstdint>
#include <set>
#include <unordered_map>
#include <utility>

namespace qn::step {
namespace {

constexpr std::string_view kLocationRole = "external document id and location";
constexpr std::string_view kExternalDefinition = "external definition";
/// Files that hold definitions; other documents (drawings, notes) stay metadata.
constexpr std::string_view kContentEndings[] = {".stp", ".step", ".p21", ".qn", ".gltf", ".glb"};

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

/// File names by number, each kept once.
class FileNames {
public:
    using Number = std::uint32_t;
    static constexpr Number kNone = 0;  ///< of the empty name

    FileNames() { NumberOf(std::string()); }
    Number NumberOf(const std::string& name) {
        const auto [entry, isNew] = numbers_.emplace(name, static_cast<Number>(names_.size()));
        if (isNew) names_.push_back(&entry->first);
        return entry->second;
    }
    const std::string& operator[](Number number) const { return *names_[number]; }

private:
    std::unordered_map<std::string, Number> numbers_;
    std::vector<const std::string*> names_;
};

/// Reads each record once, however many others lead to it.
class DocumentReader {
public:
    DocumentReader(const ExchangeFile& file, const StructureIndex& index, StepModel& model)
        : file_(file), index_(index), model_(model) {}

    void Run() {
        ReadIdentifications();
        const bool hasExternalFiles = !files_.empty();
        ReadReferences();
        if (hasExternalFiles) ReadExternalShapes();
        ReadAssociations();
    }

private:
    using Name = FileNames::Number;
    /// Definitions by the representation of their shape.
    using Owners = std::unordered_map<EntityId, std::vector<std::size_t>>;

    /// File names that identification assignments give to documents.
    void ReadIdentifications() {
        for (const EntityId id : file_.OfKind(EntityKind::kExternalIdentification)) {
            const Params attributes =
                file_.Get(id).Attributes({"IDENTIFICATION_ASSIGNMENT", "EXTERNAL_IDENTIFICATION_ASSIGNMENT",
                                          "APPLIED_EXTERNAL_IDENTIFICATION_ASSIGNMENT"});
            const std::string name = TextAt(attributes, 0);
            if (!IsLocation(ReferenceAt(attributes, 1)) || name.empty()) continue;
            const std::string path = Joined(Folder(ReferenceAt(attributes, 2)), name);
            Charge(path);
            const Params& items = ListAt(attributes, 3);
            for (std::size_t i = 0; i < items.size(); ++i)
                files_.emplace(ReferenceAt(items, i), names_.NumberOf(path));
        }
    }

    bool IsLocation(EntityId role) {
        const auto [known, isNew] = isLocation_.emplace(role, false);
        if (isNew)
            known->second = TextAt(file_.Get(role).Attributes({"IDENTIFICATION_ROLE"}), 0) == kLocationRole;
        return known->second;
    }

    const std::string& Folder(EntityId source) {
        const auto [known, isNew] = folders_.emplace(source, std::string());
        if (isNew) known->second = FolderOf(file_, source);
        return known->second;
    }

    /// The file that a document stands for; none if it stands for none.
    Name FileOf(EntityId document) {
        const auto [known, isNew] = files_.emplace(document, FileNames::kNone);
        if (!isNew) return known->second;
        const Record record = file_.Get(document);
        if (record.Is("DOCUMENT_FILE"))
            known->second = names_.NumberOf(TextAt(record.Attributes({"DOCUMENT", "DOCUMENT_FILE"}), 0));
        return known->second;
    }

    void ReadReferences() {
        for (const EntityId id : file_.OfKind(EntityKind::kDocumentReference)) {
            const Params attributes =
                file_.Get(id).Attributes({"DOCUMENT_REFERENCE", "APPLIED_DOCUMENT_REFERENCE"});
            const Name name = FileOf(ReferenceAt(attributes, 0));
            const Params& items = ListAt(attributes, 2);
            for (std::size_t i = 0; i < items.size(); ++i)
                if (const auto row = index_.Definition(index_.SubjectOf(ReferenceAt(items, i))))
                    AddFile(*row, name);
        }
    }

    Owners OwnersOfShapes() const {
        Owners owners;
        std::set<std::pair<EntityId, std::size_t>> known;
        for (const EntityId id : file_.OfKind(EntityKind::kShapeDefinitionRepresentation)) {
            const Params attributes = file_.Get(id).Attributes(
                {"PROPERTY_DEFINITION_REPRESENTATION", "SHAPE_DEFINITION_REPRESENTATION"});
            const EntityId shape = ReferenceAt(attributes, 1);
            const auto row = index_.Definition(index_.SubjectOf(ReferenceAt(attributes, 0)));
            if (row && known.emplace(shape, *row).second) owners[shape].push_back(*row);
        }
        return owners;
    }

    /// The file of the document whose "external definition" the property states, else none.
    Name ExternalFile(EntityId id) {
        const Params property = file_.Get(id).Attributes({"PROPERTY_DEFINITION"});
        return TextAt(property, 0) == kExternalDefinition ? FileOf(ReferenceAt(property, 2))
                                                          : FileNames::kNone;
    }

    /// A document whose "external definition" is the representation of a definition's shape holds that
    /// definition.
    void ReadExternalShapes() {
        const Owners owners = OwnersOfShapes();
        std::unordered_map<EntityId, Name> external;
        std::set<std::pair<EntityId, Name>> done;
        for (const EntityId id : file_.OfKind(EntityKind::kPropertyRepresentation)) {
            const Params link = file_.Get(id).Attributes({"PROPERTY_DEFINITION_REPRESENTATION"});
            const EntityId property = ReferenceAt(link, 0), shape = ReferenceAt(link, 1);
            const auto found = owners.find(shape);
            if (found == owners.end()) continue;
            const auto [known, isNew] = external.emplace(property, FileNames::kNone);
            if (isNew) known->second = ExternalFile(property);
            if (!done.emplace(shape, known->second).second) continue;
            for (const std::size_t owner : found->second)
                AddFile(owner, known->second);
        }
    }

    void ReadAssociations() {
        for (std::size_t row = 0; row < model_.definitions.size(); ++row) {
            const Record record = file_.Get(model_.definitions[row].entity);
            if (!record.Is("PRODUCT_DEFINITION_WITH_ASSOCIATED_DOCUMENTS")) continue;
            const Params attributes =
                record.Attributes({"PRODUCT_DEFINITION", "PRODUCT_DEFINITION_WITH_ASSOCIATED_DOCUMENTS"});
            const Params& documents = ListAt(attributes, 4);
            for (std::size_t i = 0; i < documents.size(); ++i)
                AddFile(row, FileOf(ReferenceAt(documents, i)));
        }
    }

    void AddFile(std::size_t row, Name name) {
        if (name == FileNames::kNone || !links_.emplace(row, name).second) return;
        Charge(names_[name]);
        model_.definitions[row].externalFiles.push_back(names_[name]);
    }

    /// Few records can name many files for many definitions.
    void Charge(const std::string& name) {
        bytes_ += sizeof(std::string) + name.size();
        if (bytes_ > step_limits::kMostFileNameBytes)
            throw ReadFailure("its documents name files for its definitions in more than " +
                                  std::to_string(step_limits::kMostFileNameBytes) + " bytes, the limit",
                              Cause::kLimit);
    }

    const ExchangeFile& file_;
    const StructureIndex& index_;
    StepModel& model_;
    FileNames names_;
    std::size_t bytes_ = 0;                              ///< of names, as often as they are given
    std::unordered_map<EntityId, Name> files_;           ///< by document
    std::unordered_map<EntityId, bool> isLocation_;      ///< by role
    std::unordered_map<EntityId, std::string> folders_;  ///< by source
    std::set<std::pair<std::size_t, Name>> links_;       ///< rows of definitions, and the names they have
};

}  // namespace

void ReadDocuments(const ExchangeFile& file, const StructureIndex& index, StepModel& model) {
    DocumentReader(file, index, model).Run();
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

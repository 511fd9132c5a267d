#pragma once

#include "importers/step/part21_error.h"
#include "importers/step/part21_record.h"

#include <array>
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qn::step {

class Lexer;

/// The kinds of entity that are looked for by kind. Everything else is reached by its number.
enum class EntityKind : std::uint8_t {
    kOther,
    kProductDefinition,
    kNextAssemblyUsage,
    kMakeFromUsage,
    kProductCategory,
    kProductDefinitionShape,
    kShapeDefinitionRepresentation,
    kShapeRelationship,
    kContextDependentShape,
    kPropertyDefinition,
    kPropertyRepresentation,
    kGeneralPropertyAssociation,
    kDocumentReference,
    kExternalIdentification,
    kStyledItem,
    kCount
};

/// The text of an exchange file (ISO 10303-21) with an index of its entities. Records are parsed
/// when they are asked for, so geometry that nobody looks at costs one pass over its characters.
class ExchangeFile {
public:
    /// Takes the file's bytes. Throws ReadFailure if the outline of the file is damaged: no header,
    /// a section that is not closed, an entity without number or end.
    explicit ExchangeFile(std::string bytes, const Poll& poll = nullptr);

    ExchangeFile(const ExchangeFile&) = delete;
    ExchangeFile& operator=(const ExchangeFile&) = delete;

    const std::vector<std::string>& Schemas() const { return schemas_; }
    const std::vector<std::string>& Warnings() const { return warnings_; }
    std::size_t EntityCount() const { return entries_.size(); }

    /// Entities of this kind in the order of the file.
    const std::vector<EntityId>& OfKind(EntityKind kind) const;
    /// A kind of the entity; kOther also for an unknown number.
    EntityKind KindOf(EntityId id) const;
    /// The entity's record; none for an unknown number. Throws ReadFailure if it is malformed.
    Record Get(EntityId id) const;
    /// The text of an exchange file with this one's header, the entities named, and all that these lead
    /// to. Numbers stay.
    std::string Extract(const std::vector<EntityId>& roots) const;

private:
    struct Entry {
        EntityId id;
        std::size_t offset;  ///< of the record, behind the '='
        EntityKind kind;
    };

    void ReadHeader(Lexer& lexer);
    void ReadData(Lexer& lexer, const Poll& poll);
    void SkipSection(Lexer& lexer);
    void ReadSections(Lexer& lexer, const Poll& poll);
    void AddEntity(Lexer& lexer);
    EntityKind Classify(Lexer& lexer, EntityId id);
    EntityKind ClassifyComplex(Lexer& lexer, EntityId id);
    EntityKind FileUnder(std::string_view keyword, EntityId id);
    void SortEntries();
    const Entry* Find(EntityId id) const;
    std::string_view TextOf(const Entry& entry) const;

    std::string bytes_;
    std::string_view header_;  ///< from HEADER; to ENDSEC; inclusive
    std::vector<std::string> schemas_;
    std::vector<std::string> warnings_;
    std::vector<Entry> entries_;  ///< ascending by id
    std::array<std::vector<EntityId>, static_cast<std::size_t>(EntityKind::kCount)> byKind_;
};

}  // namespace qn::step

#include "importers/step/part21_file.h"

#include "importers/step/part21_lexer.h"

#include <algorithm>
#include <unordered_map>

namespace qn::step {
namespace {

constexpr std::string_view kMagic = "ISO-10303-21";
constexpr std::string_view kEndOfFile = "END-ISO-10303-21";
constexpr std::string_view kEndOfSection = "ENDSEC";
constexpr std::string_view kUtf8Mark = "\xef\xbb\xbf";
constexpr std::size_t kEntitiesBetweenPolls = 1 << 16;

const struct {
    std::string_view keyword;
    EntityKind kind;
} kKinds[] = {
    {"PRODUCT_DEFINITION", EntityKind::kProductDefinition},
    {"PRODUCT_DEFINITION_WITH_ASSOCIATED_DOCUMENTS", EntityKind::kProductDefinition},
    {"NEXT_ASSEMBLY_USAGE_OCCURRENCE", EntityKind::kNextAssemblyUsage},
    {"MAKE_FROM_USAGE_OPTION", EntityKind::kMakeFromUsage},
    {"PRODUCT_RELATED_PRODUCT_CATEGORY", EntityKind::kProductCategory},
    {"PRODUCT_DEFINITION_SHAPE", EntityKind::kProductDefinitionShape},
    {"SHAPE_DEFINITION_REPRESENTATION", EntityKind::kShapeDefinitionRepresentation},
    {"SHAPE_REPRESENTATION_RELATIONSHIP", EntityKind::kShapeRelationship},
    {"REPRESENTATION_RELATIONSHIP", EntityKind::kShapeRelationship},
    {"CONTEXT_DEPENDENT_SHAPE_REPRESENTATION", EntityKind::kContextDependentShape},
    {"PROPERTY_DEFINITION", EntityKind::kPropertyDefinition},
    {"PROPERTY_DEFINITION_REPRESENTATION", EntityKind::kPropertyRepresentation},
    {"GENERAL_PROPERTY_ASSOCIATION", EntityKind::kGeneralPropertyAssociation},
    {"APPLIED_DOCUMENT_REFERENCE", EntityKind::kDocumentReference},
    {"APPLIED_EXTERNAL_IDENTIFICATION_ASSIGNMENT", EntityKind::kExternalIdentification},
    {"STYLED_ITEM", EntityKind::kStyledItem},
    {"OVER_RIDING_STYLED_ITEM", EntityKind::kStyledItem},
};

EntityKind KindOfKeyword(std::string_view keyword) {
    static const auto kIndex = [] {
        std::unordered_map<std::string_view, EntityKind> index;
        for (const auto& row : kKinds)
            index.emplace(row.keyword, row.kind);
        return index;
    }();
    const auto found = kIndex.find(keyword);
    return found == kIndex.end() ? EntityKind::kOther : found->second;
}

std::size_t Index(EntityKind kind) {
    return static_cast<std::size_t>(kind);
}

/// Calls `take` with each entity that a record names, those in nested parameters too. The record goes from
/// `first` to the end of the text, which begins where the file does.
template <class Take>
void ForEachReference(std::string_view text, std::size_t first, Take&& take) {
    Lexer lexer(text, first);
    while (lexer.SkipToReference())
        take(lexer.Number());
}

}  // namespace

ExchangeFile::ExchangeFile(std::string bytes, const Poll& poll) : bytes_(std::move(bytes)) {
    if (bytes_.empty()) throw ReadFailure("the file is empty");
    Lexer lexer(bytes_, bytes_.compare(0, kUtf8Mark.size(), kUtf8Mark) == 0 ? kUtf8Mark.size() : 0);
    lexer.SkipBlanks();
    if (lexer.Keyword() != kMagic) throw ReadFailure("not a STEP file: it does not begin with ISO-10303-21");
    lexer.Expect(';', "after ISO-10303-21");
    ReadSections(lexer, poll);
    SortEntries();
}

void ExchangeFile::ReadSections(Lexer& lexer, const Poll& poll) {
    bool hasData = false;
    for (;;) {
        lexer.SkipBlanks();
        if (lexer.AtEnd()) break;
        const std::size_t start = lexer.Position();
        const std::string_view section = lexer.Keyword();
        if (section == kEndOfFile) {
            if (!hasData) lexer.Fail("the file has no DATA section");
            return;
        }
        if (section.empty()) lexer.Fail("a section name expected");
        if (lexer.Peek() == '(' && !lexer.SkipParentheses())
            lexer.Fail("the file ends inside a section's head");
        lexer.Expect(';', "after the section name " + std::string(section));
        hasData = hasData || section == "DATA";
        if (section == "HEADER") {
            ReadHeader(lexer);
            header_ = std::string_view(bytes_).substr(start, lexer.Position() - start);
        } else if (section == "DATA") {
            ReadData(lexer, poll);
        } else {
            SkipSection(lexer);
        }
    }
    if (!hasData) lexer.Fail("the file ends before its DATA section");
    warnings_.push_back("the file ends without END-ISO-10303-21");
}

void ExchangeFile::ReadHeader(Lexer& lexer) {
    for (;;) {
        lexer.SkipBlanks();
        const std::string_view keyword = lexer.Keyword();
        if (keyword.empty())
            lexer.Fail(lexer.AtEnd() ? "the file ends inside its header" : "the header is malformed");
        if (keyword != kEndOfSection) {
            const Params params = lexer.ParameterList(1);
            if (keyword == "FILE_SCHEMA")
                for (std::size_t i = 0; i < ListAt(params, 0).size(); ++i)
                    schemas_.push_back(TextAt(ListAt(params, 0), i));
        }
        lexer.Expect(';', "in the header after " + std::string(keyword));
        if (keyword == kEndOfSection) return;
    }
}

void ExchangeFile::ReadData(Lexer& lexer, const Poll& poll) {
    for (;;) {
        if (entries_.size() % kEntitiesBetweenPolls == 0) Check(poll);
        lexer.SkipBlanks();
        if (lexer.Accept('#')) {
            AddEntity(lexer);
        } else if (lexer.AtEnd()) {
            lexer.Fail("the file ends inside its data, after " + std::to_string(entries_.size()) +
                       " entities");
        } else if (lexer.Keyword() == kEndOfSection) {
            lexer.Expect(';', "after ENDSEC");
            return;
        } else {
            lexer.Fail("an entity or ENDSEC expected");
        }
    }
}

void ExchangeFile::SkipSection(Lexer& lexer) {
    for (;;) {
        lexer.SkipBlanks();
        const bool isEnd = lexer.Keyword() == kEndOfSection;
        if (!lexer.SkipStatement()) lexer.Fail("the file ends inside a section");
        if (isEnd) return;
    }
}

void ExchangeFile::AddEntity(Lexer& lexer) {
    const std::size_t start = lexer.Position();
    const EntityId id = lexer.Number();
    lexer.Expect('=', "after #" + std::to_string(id));
    lexer.SkipBlanks();
    const std::size_t offset = lexer.Position();
    const EntityKind kind = Classify(lexer, id);
    entries_.push_back({id, offset, kind});
    if (!lexer.SkipStatement()) lexer.FailAt(start, "the file ends inside #" + std::to_string(id));
}

EntityKind ExchangeFile::Classify(Lexer& lexer, EntityId id) {
    if (lexer.Peek() == '(') return ClassifyComplex(lexer, id);
    const std::string_view keyword = lexer.Keyword();
    if (keyword.empty()) lexer.Fail("a type name expected after #" + std::to_string(id) + "=");
    return FileUnder(keyword, id);
}

EntityKind ExchangeFile::ClassifyComplex(Lexer& lexer, EntityId id) {
    lexer.Accept('(');
    EntityKind kind = EntityKind::kOther;
    for (;;) {
        lexer.SkipBlanks();
        const std::string_view keyword = lexer.Keyword();
        if (keyword.empty()) return kind;
        const EntityKind found = FileUnder(keyword, id);
        if (found != EntityKind::kOther) kind = found;
        lexer.SkipBlanks();
        if (lexer.Peek() != '(' || !lexer.SkipParentheses())
            lexer.Fail("the parts of #" + std::to_string(id) + " are malformed");
    }
}

EntityKind ExchangeFile::FileUnder(std::string_view keyword, EntityId id) {
    const EntityKind kind = KindOfKeyword(keyword);
    auto& list = byKind_[Index(kind)];
    if (kind != EntityKind::kOther && (list.empty() || list.back() != id)) list.push_back(id);
    return kind;
}

void ExchangeFile::SortEntries() {
    const auto byId = [](const Entry& a, const Entry& b) { return a.id < b.id; };
    const auto sameId = [](const Entry& a, const Entry& b) { return a.id == b.id; };
    if (!std::is_sorted(entries_.begin(), entries_.end(), byId))
        std::stable_sort(entries_.begin(), entries_.end(), byId);
    const auto doubled = std::adjacent_find(entries_.begin(), entries_.end(), sameId);
    if (doubled != entries_.end())
        throw ReadFailure("the entity #" + std::to_string(doubled->id) + " is defined twice");
}

const ExchangeFile::Entry* ExchangeFile::Find(EntityId id) const {
    // Most files number their entities without gaps.
    if (entries_.empty() || id < entries_.front().id) return nullptr;
    const std::size_t guess = id - entries_.front().id;
    if (guess < entries_.size() && entries_[guess].id == id) return &entries_[guess];
    const auto found =
        std::lower_bound(entries_.begin(), entries_.end(), id,
                         [](const Entry& entry, EntityId wanted) { return entry.id < wanted; });
    return found == entries_.end() || found->id != id ? nullptr : &*found;
}

const std::vector<EntityId>& ExchangeFile::OfKind(EntityKind kind) const {
    return byKind_[Index(kind)];
}

EntityKind ExchangeFile::KindOf(EntityId id) const {
    const Entry* entry = Find(id);
    return entry ? entry->kind : EntityKind::kOther;
}

Record ExchangeFile::Get(EntityId id) const {
    const Entry* entry = id == kNoEntity ? nullptr : Find(id);
    if (!entry) return {};
    Record record = ParseRecord(bytes_, entry->offset);
    record.id = id;
    return record;
}

std::string_view ExchangeFile::TextOf(const Entry& entry) const {
    Lexer lexer(bytes_, entry.offset);
    lexer.SkipStatement();
    return std::string_view(bytes_).substr(entry.offset, lexer.Position() - entry.offset);
}

std::string ExchangeFile::Extract(const std::vector<EntityId>& roots) const {
    std::vector<bool> isTaken(entries_.size());
    std::vector<const Entry*> open;
    const auto take = [&](EntityId id) {
        const Entry* entry = Find(id);
        if (!entry || isTaken[static_cast<std::size_t>(entry - entries_.data())]) return;
        isTaken[static_cast<std::size_t>(entry - entries_.data())] = true;
        open.push_back(entry);
    };
    for (const EntityId root : roots)
        take(root);
    while (!open.empty()) {
        const Entry* entry = open.back();
        open.pop_back();
        const std::size_t end = entry->offset + TextOf(*entry).size();
        ForEachReference(std::string_view(bytes_).substr(0, end), entry->offset, take);
    }
    std::string text = std::string(kMagic) + ";\n" + std::string(header_) + "\nDATA;\n";
    for (std::size_t i = 0; i < entries_.size(); ++i)
        if (isTaken[i])
            text.append("#")
                .append(std::to_string(entries_[i].id))
                .append("=")
                .append(TextOf(entries_[i]))
                .append("\n");
    return text + std::string(kEndOfSection) + ";\n" + std::string(kEndOfFile) + ";\n";
}

}  // namespace qn::step

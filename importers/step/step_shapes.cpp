#include "importers/step/step_shapes.h"

#include "importers/step/step_placement.h"
#include "importers/step/step_transform.h"

#include <algorithm>
#include <iterator>
#include <set>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace qn::step {
namespace {

/// Items of a representation that place or describe, but have no extent.
constexpr std::string_view kNotGeometry[] = {"AXIS2_PLACEMENT_3D", "AXIS2_PLACEMENT_2D", "AXIS1_PLACEMENT",
                                             "PLACEMENT",          "CARTESIAN_POINT",    "DIRECTION"};

/// One side's view of a relationship between two representations.
struct Link {
    EntityId other;
    Transform fromOther;  ///< from the other one into this one
};

struct Relationship {
    Params attributes;  ///< name, description, first and second representation
    EntityId transformation = kNoEntity;
};

class ShapeReader {
public:
    ShapeReader(const ExchangeFile& file, const StructureIndex& index, StepModel& model)
        : file_(file), index_(index), model_(model), placements_(file) {}

    void Run() {
        ReadOwners();
        PlaceUses();
        LinkRepresentations();
        CollectPieces();
        PlaceMappedUses();
        DropEmptyPieces();
        FindUnit();
    }

private:
    Relationship ReadRelationship(EntityId id) const {
        const Record record = file_.Get(id);
        Relationship result;
        result.attributes = record.Attributes(
            {"REPRESENTATION_RELATIONSHIP", "REPRESENTATION_RELATIONSHIP_WITH_TRANSFORMATION"});
        result.transformation = ReferenceAt(result.attributes, 4);
        return result;
    }

    /// Shape definition representations: which representation which definition claims.
    void ReadOwners() {
        for (const EntityId id : file_.OfKind(EntityKind::kShapeDefinitionRepresentation)) {
            const Params attributes = file_.Get(id).Attributes({"PROPERTY_DEFINITION_REPRESENTATION"});
            const auto definition = index_.Definition(index_.SubjectOf(ReferenceAt(attributes, 0)));
            const EntityId representation = ReferenceAt(attributes, 1);
            if (!definition || representation == kNoEntity) continue;
            if (!owns_.insert({representation, *definition}).second) continue;
            claimed_.insert(representation);
            claims_.push_back({*definition, representation});
        }
    }

    bool Owns(std::size_t definition, EntityId representation) const {
        return owns_.count({representation, definition}) != 0;
    }

    void PlaceUses() {
        for (const EntityId id : file_.OfKind(EntityKind::kContextDependentShape)) {
            const Params attributes = file_.Get(id).Attributes({"CONTEXT_DEPENDENT_SHAPE_REPRESENTATION"});
            const EntityId relationship = ReferenceAt(attributes, 0);
            usedForPlacing_.insert(relationship);
            const auto row = index_.Use(index_.SubjectOf(ReferenceAt(attributes, 1)));
            if (!row || model_.uses[*row].isPlaced) continue;
            PlaceUse(model_.uses[*row], ReadRelationship(relationship));
        }
    }

    void PlaceUse(Use& use, const Relationship& relationship) {
        const EntityId first = ReferenceAt(relationship.attributes, 2);
        const EntityId second = ReferenceAt(relationship.attributes, 3);
        if (first == kNoEntity || second == kNoEntity) return;
        const Transform transform =
            placements_.OfRelationship(relationship.attributes, relationship.transformation);
        const bool isStraight = Owns(use.child, first) || Owns(use.parent, second);
        const bool isReversed = !isStraight && (Owns(use.parent, first) || Owns(use.child, second));
        use.toParent = isReversed ? Inverse(transform) : transform;
        use.isPlaced = true;
    }

    /// Relationships that place no component tie representations of one and the same shape.
    void LinkRepresentations() {
        for (const EntityId id : file_.OfKind(EntityKind::kShapeRelationship)) {
            if (usedForPlacing_.count(id) != 0) continue;
            const Relationship relationship = ReadRelationship(id);
            const EntityId first = ReferenceAt(relationship.attributes, 2);
            const EntityId second = ReferenceAt(relationship.attributes, 3);
            if (first == kNoEntity || second == kNoEntity) continue;
            const Transform transform =
                placements_.OfRelationship(relationship.attributes, relationship.transformation);
            links_[second].push_back({first, transform});
            links_[first].push_back({second, Inverse(transform)});
        }
    }

    void CollectPieces() {
        for (const auto& [definition, representation] : claims_) {
            const auto& pieces = PiecesOf(representation);
            auto& shapes = model_.definitions[definition].shapes;
            shapes.insert(shapes.end(), pieces.begin(), pieces.end());
        }
    }

    /// The claimed representation and all that relationships tie to it. A representation that
    /// could be reached from two claimed ones belongs to the first.
    const std::vector<ShapePiece>& PiecesOf(EntityId representation) {
        const auto [entry, isNew] = pieces_.try_emplace(representation);
        auto& pieces = entry->second;
        if (!isNew) return pieces;
        pieces.push_back({representation, placements_.ItemsOf(representation), kIdentity});
        for (std::size_t at = 0; at < pieces.size(); ++at)
            FollowLinks(pieces, at);
        return pieces;
    }

    void FollowLinks(std::vector<ShapePiece>& pieces, std::size_t at) {
        const auto found = links_.find(pieces[at].representation);
        if (found == links_.end()) return;
        for (const Link& link : found->second) {
            if (claimed_.count(link.other) != 0 || !followed_.insert(link.other).second) continue;
            pieces.push_back(
                {link.other, placements_.ItemsOf(link.other), Then(link.fromOther, pieces[at].toDefinition)});
        }
    }

    EntityId MappedRepresentation(EntityId item) const {
        const Record record = file_.Get(item);
        if (!record.Is("MAPPED_ITEM")) return kNoEntity;
        const Params attributes = record.Attributes({"REPRESENTATION_ITEM", "MAPPED_ITEM"});
        return ReferenceAt(file_.Get(ReferenceAt(attributes, 1)).Attributes({"REPRESENTATION_MAP"}), 1);
    }

    /// A mapped item of a representation that a component claims stands for a use of it: it places
    /// the next use that has no placement yet, and is no geometry of the assembly.
    void PlaceMappedUses() {
        for (const auto& [definition, representation] : claims_)
            claimsOf_[definition].push_back(representation);
        for (Definition& definition : model_.definitions) {
            if (!definition.IsAssembly() || !HasMappedItems(definition)) continue;
            WaitingUses waiting = UsesByRepresentation(definition);
            for (ShapePiece& piece : definition.shapes)
                std::erase_if(piece.items, [&](EntityId item) { return PlacesUse(waiting, piece, item); });
        }
    }

    bool HasMappedItems(const Definition& definition) const {
        return std::any_of(definition.shapes.begin(), definition.shapes.end(), [&](const ShapePiece& piece) {
            return std::any_of(piece.items.begin(), piece.items.end(),
                               [&](EntityId item) { return MappedRepresentation(item) != kNoEntity; });
        });
    }

    /// Uses without placement by what their components claim, last one first.
    using WaitingUses = std::unordered_map<EntityId, std::vector<std::size_t>>;

    WaitingUses UsesByRepresentation(const Definition& definition) const {
        WaitingUses waiting;
        for (auto use = definition.uses.rbegin(); use != definition.uses.rend(); ++use) {
            const auto claims = claimsOf_.find(model_.uses[*use].child);
            if (claims == claimsOf_.end()) continue;
            for (const EntityId representation : claims->second)
                waiting[representation].push_back(*use);
        }
        return waiting;
    }

    bool PlacesUse(WaitingUses& waiting, const ShapePiece& piece, EntityId item) {
        const auto found = waiting.find(MappedRepresentation(item));
        if (found == waiting.end()) return false;
        auto& uses = found->second;
        while (!uses.empty() && model_.uses[uses.back()].isPlaced)
            uses.pop_back();
        if (uses.empty()) return true;
        Use& use = model_.uses[uses.back()];
        use.toParent = Then(placements_.OfMappedItem(item, piece.representation), piece.toDefinition);
        use.isPlaced = true;
        return true;
    }

    bool IsGeometry(EntityId item) const {
        const Record record = file_.Get(item);
        return record.Exists() && std::none_of(std::begin(kNotGeometry), std::end(kNotGeometry),
                                               [&](std::string_view keyword) { return record.Is(keyword); });
    }

    void DropEmptyPieces() {
        for (Definition& definition : model_.definitions) {
            for (ShapePiece& piece : definition.shapes)
                std::erase_if(piece.items, [&](EntityId item) { return !IsGeometry(item); });
            std::erase_if(definition.shapes, [](const ShapePiece& piece) { return piece.items.empty(); });
        }
    }

    void FindUnit() {
        double first = 0;
        double ofRoot = 0;
        for (const auto& [definition, representation] : claims_) {
            const double metres = placements_.MetresOf(representation);
            if (first == 0) first = metres;
            if (ofRoot == 0 && !model_.roots.empty() && definition == model_.roots.front()) ofRoot = metres;
        }
        if (first > 0) model_.sourceUnit = ofRoot > 0 ? ofRoot : first;
    }

    struct Claim {
        std::size_t definition;
        EntityId representation;
    };

    const ExchangeFile& file_;
    const StructureIndex& index_;
    StepModel& model_;
    Placements placements_;
    std::vector<Claim> claims_;  ///< in the order of the file
    std::unordered_set<EntityId> claimed_;
    std::set<std::pair<EntityId, std::size_t>> owns_;
    std::unordered_map<std::size_t, std::vector<EntityId>> claimsOf_;
    std::unordered_map<EntityId, std::vector<ShapePiece>> pieces_;
    std::unordered_map<EntityId, std::vector<Link>> links_;
    std::unordered_set<EntityId> usedForPlacing_;
    std::unordered_set<EntityId> followed_;
};

}  // namespace

void ReadShapes(const ExchangeFile& file, const StructureIndex& index, StepModel& model) {
    ShapeReader(file, index, model).Run();
}

}  // namespace qn::step

#include "importers/step/step_products.h"

#include "importers/step/step_cycles.h"

#include <unordered_set>

namespace qn::step {
namespace {

using EntitySet = std::unordered_set<EntityId>;

constexpr std::string_view kDocumentCategory = "document";
/// Names of the contexts that mark a product definition as one of a document.
constexpr std::string_view kDocumentContexts[] = {"digital document definition",
                                                  "physical document definition"};

Params RelationAttributes(const Record& record) {
    return record.Attributes({"PRODUCT_DEFINITION_RELATIONSHIP", "ASSEMBLY_COMPONENT_USAGE"});
}

EntitySet DocumentProducts(const ExchangeFile& file) {
    EntitySet products;
    for (const EntityId id : file.OfKind(EntityKind::kProductCategory)) {
        const Params category =
            file.Get(id).Attributes({"PRODUCT_CATEGORY", "PRODUCT_RELATED_PRODUCT_CATEGORY"});
        if (TextAt(category, 0) != kDocumentCategory) continue;
        const Params& list = ListAt(category, 2);
        for (std::size_t i = 0; i < list.size(); ++i)
            products.insert(ReferenceAt(list, i));
    }
    return products;
}

bool IsDocumentContext(const ExchangeFile& file, EntityId context) {
    const std::string name = TextAt(file.Get(context).Attributes({"APPLICATION_CONTEXT_ELEMENT"}), 0);
    for (const std::string_view known : kDocumentContexts)
        if (name == known) return true;
    return false;
}

/// Definitions that others are made from, unless they are used as components themselves.
EntitySet RawMaterials(const ExchangeFile& file) {
    EntitySet materials;
    for (const EntityId id : file.OfKind(EntityKind::kMakeFromUsage))
        materials.insert(ReferenceAt(RelationAttributes(file.Get(id)), 4));
    if (materials.empty()) return materials;
    for (const EntityId id : file.OfKind(EntityKind::kNextAssemblyUsage)) {
        const Params usage = RelationAttributes(file.Get(id));
        materials.erase(ReferenceAt(usage, 3));
        materials.erase(ReferenceAt(usage, 4));
    }
    return materials;
}

const std::string& FirstOf(const std::string& name, const std::string& id) {
    return name.empty() ? id : name;
}

class ProductReader {
public:
    ProductReader(const ExchangeFile& file, StepModel& model) : file_(file), model_(model) {}

    StructureIndex Run() {
        ReadDefinitions();
        ReadUses();
        FindRoots();
        for (const EntityId id : file_.OfKind(EntityKind::kProductDefinitionShape))
            index_.subjects.emplace(id, ReferenceAt(PropertyAttributes(id), 2));
        return std::move(index_);
    }

private:
    Params PropertyAttributes(EntityId id) const { return file_.Get(id).Attributes({"PROPERTY_DEFINITION"}); }

    void ReadDefinitions() {
        const EntitySet documents = DocumentProducts(file_);
        const EntitySet materials = RawMaterials(file_);
        std::unordered_map<EntityId, bool> documentContexts;
        const auto& ids = file_.OfKind(EntityKind::kProductDefinition);
        model_.definitions.reserve(ids.size());
        for (const EntityId id : ids) {
            if (materials.count(id) != 0) continue;
            const Params attributes = file_.Get(id).Attributes({"PRODUCT_DEFINITION"});
            const EntityId context = ReferenceAt(attributes, 3);
            const auto [isDocument, isNew] = documentContexts.try_emplace(context);
            if (isNew) isDocument->second = IsDocumentContext(file_, context);
            if (!isDocument->second) AddDefinition(id, attributes, documents);
        }
    }

    void AddDefinition(EntityId id, const Params& attributes, const EntitySet& documents) {
        const Params formation =
            file_.Get(ReferenceAt(attributes, 2)).Attributes({"PRODUCT_DEFINITION_FORMATION"});
        const EntityId productId = ReferenceAt(formation, 2);
        if (documents.count(productId) != 0) return;
        const Params product = file_.Get(productId).Attributes({"PRODUCT"});
        if (product.empty()) Warn("the product definition #" + std::to_string(id) + " leads to no product");
        Definition definition;
        definition.entity = id;
        definition.productId = TextAt(product, 0);
        definition.name = FirstOf(TextAt(product, 1), definition.productId);
        definition.description = TextAt(product, 2);
        definition.versionId = TextAt(formation, 0);
        definition.definitionId = TextAt(attributes, 0);
        definition.definitionDescription = TextAt(attributes, 1);
        index_.definitions.emplace(id, model_.definitions.size());
        model_.definitions.push_back(std::move(definition));
    }

    void ReadUses() {
        const auto& ids = file_.OfKind(EntityKind::kNextAssemblyUsage);
        model_.uses.reserve(ids.size());
        for (const EntityId id : ids) {
            const Params usage = RelationAttributes(file_.Get(id));
            const auto parent = index_.Definition(ReferenceAt(usage, 3));
            const auto child = index_.Definition(ReferenceAt(usage, 4));
            if (parent && child)
                AddUse(id, usage, *parent, *child);
            else
                Warn("the use #" + std::to_string(id) + " has no " + (parent ? "component" : "assembly"));
        }
    }

    void AddUse(EntityId id, const Params& usage, std::size_t parent, std::size_t child) {
        Use use;
        use.entity = id;
        use.parent = parent;
        use.child = child;
        use.id = TextAt(usage, 0);
        use.name = FirstOf(TextAt(usage, 1), use.id);
        use.description = TextAt(usage, 2);
        use.referenceDesignator = TextAt(usage, 5);
        index_.uses.emplace(id, model_.uses.size());
        model_.definitions[parent].uses.push_back(model_.uses.size());
        model_.uses.push_back(std::move(use));
    }

    void FindRoots() {
        std::vector<bool> isUsed(model_.definitions.size());
        for (const Use& use : model_.uses)
            isUsed[use.child] = true;
        for (std::size_t i = 0; i < isUsed.size(); ++i)
            if (!isUsed[i]) model_.roots.push_back(i);
    }

    void Warn(const std::string& text) { model_.warnings.push_back(text); }

    const ExchangeFile& file_;
    StepModel& model_;
    StructureIndex index_;
};

std::optional<std::size_t> Lookup(const std::unordered_map<EntityId, std::size_t>& rows, EntityId entity) {
    const auto found = rows.find(entity);
    return found == rows.end() ? std::nullopt : std::optional(found->second);
}

}  // namespace

std::optional<std::size_t> StructureIndex::Definition(EntityId entity) const {
    return Lookup(definitions, entity);
}

std::optional<std::size_t> StructureIndex::Use(EntityId entity) const {
    return Lookup(uses, entity);
}

EntityId StructureIndex::SubjectOf(EntityId entity) const {
    const auto found = subjects.find(entity);
    return found == subjects.end() ? entity : found->second;
}

StructureIndex ReadProducts(const ExchangeFile& file, StepModel& model) {
    StructureIndex index = ProductReader(file, model).Run();
    RefuseCycles(model);
    return index;
}

}  // namespace qn::step

#include "importers/step/step_properties.h"

#include "importers/step/step_units.h"

#include <unordered_map>

namespace qn::step {
namespace {

/// What a property holds for: a definition, a use, or a part of the shape of one of them.
struct Subject {
    EntityId entity = kNoEntity;
    std::string aspect;
};

class PropertyReader {
public:
    PropertyReader(const ExchangeFile& file, const StructureIndex& index, StepModel& model)
        : file_(file), index_(index), model_(model) {}

    void Run() {
        ReadNames();
        ReadRepresentations();
        for (const EntityId id : file_.OfKind(EntityKind::kPropertyDefinition))
            ReadProperty(id);
    }

private:
    void ReadNames() {
        for (const EntityId id : file_.OfKind(EntityKind::kGeneralPropertyAssociation)) {
            const Params association = file_.Get(id).Attributes({"GENERAL_PROPERTY_ASSOCIATION"});
            const Params general = file_.Get(ReferenceAt(association, 2)).Attributes({"GENERAL_PROPERTY"});
            names_.emplace(ReferenceAt(association, 3), TextAt(general, 1));
        }
    }

    void ReadRepresentations() {
        for (const EntityId id : file_.OfKind(EntityKind::kPropertyRepresentation)) {
            const Params attributes = file_.Get(id).Attributes({"PROPERTY_DEFINITION_REPRESENTATION"});
            representations_[ReferenceAt(attributes, 0)].push_back(ReferenceAt(attributes, 1));
        }
    }

    Subject FindSubject(EntityId described) const {
        const EntityId direct = index_.SubjectOf(described);
        if (index_.Definition(direct) || index_.Use(direct)) return {direct, {}};
        const Record record = file_.Get(direct);
        if (!record.Is("SHAPE_ASPECT")) return {};
        const Params aspect = record.Attributes({"SHAPE_ASPECT"});
        return {index_.SubjectOf(ReferenceAt(aspect, 2)), TextAt(aspect, 1)};
    }

    std::vector<Property>* ListOf(EntityId subject) {
        if (const auto definition = index_.Definition(subject))
            return &model_.definitions[*definition].properties;
        if (const auto use = index_.Use(subject)) return &model_.uses[*use].properties;
        return nullptr;
    }

    void ReadProperty(EntityId id) {
        const Params attributes = file_.Get(id).Attributes({"PROPERTY_DEFINITION"});
        const auto representations = representations_.find(id);
        if (representations == representations_.end()) return;
        const Subject subject = FindSubject(ReferenceAt(attributes, 2));
        std::vector<Property>* list = ListOf(subject.entity);
        if (!list) return;
        Property property;
        property.group = TextAt(attributes, 0);
        property.description = TextAt(attributes, 1);
        property.aspect = subject.aspect;
        if (const auto name = names_.find(id); name != names_.end()) property.name = name->second;
        for (const EntityId representation : representations->second)
            AddValues(representation, property);
        list->push_back(std::move(property));
    }

    void AddValues(EntityId representation, Property& property) const {
        const Params attributes = file_.Get(representation).Attributes({"REPRESENTATION"});
        if (property.name.empty()) property.name = TextAt(attributes, 0);
        const Params& items = ListAt(attributes, 1);
        for (std::size_t i = 0; i < items.size(); ++i) {
            const Record item = file_.Get(ReferenceAt(items, i));
            PropertyValue value;
            if (ReadValue(item, value)) property.values.push_back(std::move(value));
        }
    }

    /// False for an item that holds neither text nor numbers.
    bool ReadValue(const Record& item, PropertyValue& value) const {
        const Params attributes =
            item.Attributes({"REPRESENTATION_ITEM", "DESCRIPTIVE_REPRESENTATION_ITEM",
                             "VALUE_REPRESENTATION_ITEM", "MEASURE_WITH_UNIT", "INTEGER_REPRESENTATION_ITEM",
                             "REAL_REPRESENTATION_ITEM", "BOOLEAN_REPRESENTATION_ITEM", "CARTESIAN_POINT"});
        if (attributes.size() < 2) return false;
        value.name = TextAt(attributes, 0);
        if (attributes[1].kind == ParamKind::kReference) return false;
        Take(attributes[1], value);
        value.unit = UnitText(file_, ReferenceAt(attributes, 2));
        return true;
    }

    static void Take(const Param& param, PropertyValue& value) {
        switch (param.kind) {
            case ParamKind::kInteger:
            case ParamKind::kReal:
                value.numbers.push_back(param.number);
                break;
            case ParamKind::kText:
                value.text = TextAt({param}, 0);
                break;
            case ParamKind::kEnum:
                value.text = param.text;
                break;
            case ParamKind::kList:
            case ParamKind::kTyped:
                for (const Param& member : param.items)
                    Take(member, value);
                break;
            case ParamKind::kUnset:
            case ParamKind::kDerived:
            case ParamKind::kBinary:
            case ParamKind::kReference:
                break;
        }
    }

    const ExchangeFile& file_;
    const StructureIndex& index_;
    StepModel& model_;
    std::unordered_map<EntityId, std::string> names_;  ///< of the general property, by property
    std::unordered_map<EntityId, std::vector<EntityId>> representations_;
};

}  // namespace

void ReadProperties(const ExchangeFile& file, const StructureIndex& index, StepModel& model) {
    PropertyReader(file, index, model).Run();
}

}  // namespace qn::step

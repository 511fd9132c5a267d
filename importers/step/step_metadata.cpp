#include "importers/step/step_metadata.h"

#include <unordered_map>

namespace qn::step {
namespace {

void SetUnlessEmpty(Var& group, const wchar_t* key, const std::string& text) {
    if (!text.empty()) group.At(key) = Var(ToText(text));
}

Var Texts(const std::vector<std::string>& texts) {
    const auto array = VarArray::Create();
    for (const std::string& text : texts)
        array->Add(Var(ToText(text)));
    return Var(array);
}

Var Numbers(const std::vector<double>& numbers) {
    const auto array = VarArray::Create();
    for (const double number : numbers)
        array->Add(Var(number));
    return Var(array);
}

Var Colours(const std::vector<Colour>& colours) {
    const auto array = VarArray::Create();
    for (const Colour& c : colours)
        array->Add(Numbers({c.red, c.green, c.blue, c.alpha}));
    return Var(array);
}

Var ValueOf(const PropertyValue& value) {
    Var plain(ToText(value.text));
    if (value.numbers.size() == 1) plain = Var(value.numbers.front());
    if (value.numbers.size() > 1) plain = Numbers(value.numbers);
    if (value.unit.empty()) return plain;
    Var withUnit;
    withUnit.InitMap();
    withUnit.At(MetadataKey::kValue) = plain;
    withUnit.At(MetadataKey::kUnit) = Var(ToText(value.unit));
    return withUnit;
}

/// Gives every value of a group a key of its own: the second "volume" becomes "volume (2)".
class KeyMaker {
public:
    std::string Next(const std::string& group, const std::string& key) {
        const int count = ++counts_[group + '\n' + key];
        return count == 1 ? key : key + " (" + std::to_string(count) + ")";
    }

private:
    std::unordered_map<std::string, int> counts_;
};

std::string KeyOf(const Property& property, const PropertyValue& value) {
    std::string key = property.name;
    if (key.empty()) key = value.name.empty() ? property.description : value.name;
    const bool isOneOfMany = property.values.size() > 1 && !value.name.empty() && value.name != key;
    if (isOneOfMany) key += "/" + value.name;
    if (!property.aspect.empty()) key += " of " + property.aspect;
    return key;
}

void AddProperties(Var& group, const std::vector<Property>& properties) {
    if (properties.empty()) return;
    Var& groups = group.At(MetadataKey::kProperties);
    groups.InitMap();
    KeyMaker keys;
    for (const Property& property : properties) {
        Var& values = groups.At(Var(ToText(property.group)));
        for (const PropertyValue& value : property.values)
            values.At(Var(ToText(keys.Next(property.group, KeyOf(property, value))))) = ValueOf(value);
    }
}

/// The group under its name, or nothing for an empty group.
Var Wrap(const Var& group) {
    Var metadata;
    if (group.size() > 0) metadata.At(kMetadataGroup) = group;
    return metadata;
}

}  // namespace

Var MetadataOf(const Definition& definition) {
    Var group;
    SetUnlessEmpty(group, MetadataKey::kDescription, definition.description);
    SetUnlessEmpty(group, MetadataKey::kDefinitionId, definition.definitionId);
    SetUnlessEmpty(group, MetadataKey::kDefinitionDescription, definition.definitionDescription);
    if (!definition.externalFiles.empty())
        group.At(MetadataKey::kExternalFiles) = Texts(definition.externalFiles);
    if (!definition.colours.empty()) group.At(MetadataKey::kColours) = Colours(definition.colours);
    AddProperties(group, definition.properties);
    return Wrap(group);
}

Var MetadataOf(const Use& use) {
    Var group;
    SetUnlessEmpty(group, MetadataKey::kDescription, use.description);
    SetUnlessEmpty(group, MetadataKey::kReferenceDesignator, use.referenceDesignator);
    AddProperties(group, use.properties);
    return Wrap(group);
}

void AddFileMetadata(const StepModel& model, Var& metadata) {
    Var& group = metadata.At(kMetadataGroup);
    group.At(MetadataKey::kSchema) = Texts(model.schemas);
    group.At(MetadataKey::kLengthUnit) = Var(model.sourceUnit);
}

Var ExternalIds(const std::string& id, const std::string& version) {
    Var ids;
    if (id.empty()) return ids;
    const auto entry = VarArray::Create(3);
    entry->Set(0, Var(ToText(id)));
    if (!version.empty()) entry->Set(1, Var(ToText(version)));
    ids.At(kExternalSystem) = Var(entry);
    return ids;
}

}  // namespace qn::step

#include "graph/element_changes.h"

#include "frame/host/collections.h"
#include "frame/host/node.h"
#include "frame/host/selector.h"
#include "graph/instance_impl.h"
#include "graph/lookup_table.h"
#include "graph/metadata_filter.h"
#include "graph/node_content.h"
#include "graph/node_maps.h"
#include "graph/node_matching.h"
#include "graph/node_walk.h"
#include "graph/persistent_selector_impl.h"
#include "graph/reference.h"

#include <optional>
#include <unordered_map>
#include <utility>
#include <vector>

namespace qn::graph {

namespace {

constexpr const wchar_t* kCadGroup = L"$CADMetadata";
constexpr const wchar_t* kPmiGroup = L"$QN.CAD.PMI";
constexpr const wchar_t* kInstanceName = L"InstanceName";

/// Element 1 of an entry of a link list: its key.
constexpr int kLinkKey = 1;

class ElementWalk {
public:
    ElementWalk(LookupTable* table, const InstanceToNodes& nodes,
                std::map<PersistentSelector*, k3::Node*>& answers)
        : table_(table), nodes_(nodes), answers_(answers) {}

    void Run(k3::Node& top, const String& path);

private:
    using Links = std::vector<Counted<PersistentSelectorImpl>>;

    String Step(k3::Node& node, const String& path);
    void ApplyLinks(const HierarchyElement& element, k3::Node& node);
    void ApplyLinkList(const VarArray& list, k3::Node& node);
    k3::Node* AnswerFor(PersistentSelectorImpl& link, const k3::Node& near);
    void FilterElement(HierarchyElement& element, const Var& base) const;
    const Links& PreparedSelectors(Instance& instance, const Var& base);

    LookupTable* table_;
    const InstanceToNodes& nodes_;
    std::map<PersistentSelector*, k3::Node*>& answers_;
    /// Selectors that link somewhere. An instance's selectors are looked through once, not again for each of
    /// its nodes.
    std::unordered_map<const Instance*, Links> linking_;
};

void ElementWalk::Run(k3::Node& top, const String& path) {
    WalkBelow(top, Step(top, path),
              [&](k3::Node& node, const String& above) { return std::optional<String>(Step(node, above)); });
}

/// Metadata value of a group, empty if missing.
Var MetadataEntry(const k3::Node& node, const wchar_t* group, const wchar_t* key) {
    const VarMap* metadata = node.GetMetadata(false);
    const Var* entries = metadata ? metadata->Lookup(Var(group)) : nullptr;
    const Var* value = entries ? entries->Lookup(key) : nullptr;
    return value ? *value : Var();
}

/// Names the PMI by the CAD system's name for it, where the node has one, else by the given path.
/// The path for what is below the node.
String NamePmi(k3::Node& node, const String& path) {
    const Var name = MetadataEntry(node, kCadGroup, kInstanceName);
    const String text = name.IsSet() ? name.ToText() : path;
    if (name.IsSet() || hack::IsPMINode(&node))
        node.GetMetadata(true)->At(Var(kPmiGroup)).At(kInstanceName) = Var(text);
    return text;
}

void FilterNode(k3::Node& node, const Var& base) {
    Var metadata(node.GetMetadata(false), 1);
    if (RemoveRepeatedMetadata(metadata, base)) node.SetMetadata(metadata.ToMap());
}

String ElementWalk::Step(k3::Node& node, const String& path) {
    Counted<Instance> instance(CarriedInstance(node));
    if (!instance && table_ && node.GetParamVar(Param::kInstance).IsEmpty())
        instance = table_->GetInstanceOfNode(&node);
    if (!instance) return path;

    ApplyLinks(*instance, node);
    Var base;
    if (const Counted<Reference> reference{instance->GetReference()}) {
        base = reference->GetProperty(Prop::kMetadata, 0);
        reference->SetProperty(Prop::kLocalMatrix, Var());  // shared or not: the nodes have it now
    }
    FilterElement(*instance, base);
    FilterNode(node, base);
    for (const auto& selector : PreparedSelectors(*instance, base))
        ApplyLinks(*selector, node);
    return NamePmi(node, path);
}

/// Property 9 becomes the node's link, property 0x19 its link list.
void ElementWalk::ApplyLinks(const HierarchyElement& element, k3::Node& node) {
    if (const auto link = LinkOf(element))
        if (k3::Node* found = FindNodeNear(SelectorFromPersistent(link.Get()), nodes_, node))
            node.SetParamVar(Param::kLinkedNode, Var(found, 0));
    const Var list = element.GetProperty(Prop::kLinkList, 0);
    if (const VarArray* entries = list.ToArray()) ApplyLinkList(*entries, node);
}

void ElementWalk::ApplyLinkList(const VarArray& list, k3::Node& node) {
    Var links;
    for (int i = 0; i < list.GetCount(); ++i) {
        const VarArray* entry = list.Get(i).ToArray();
        auto* link = entry ? Cast<PersistentSelectorImpl>(entry->Get(0)) : nullptr;
        k3::Node* found = link ? AnswerFor(*link, node) : nullptr;
        if (!found) continue;
        if (links.IsEmpty()) links = node.GetParamVar(Param::kLinkList);
        if (!links.IsMap()) links.InitMap();
        const Var key = entry->Get(kLinkKey);
        const auto row = VarArray::Create(2);
        row->Set(0, Var(found, 0));
        row->Set(1, key);
        links.At(key) = Var(row);
    }
    if (links.IsSet()) node.SetParamVar(Param::kLinkList, links);
}

k3::Node* ElementWalk::AnswerFor(PersistentSelectorImpl& link, const k3::Node& near) {
    const auto [answer, isNew] = answers_.try_emplace(&link, nullptr);
    if (isNew) answer->second = FindNodeNear(SelectorFromPersistent(&link), nodes_, near);
    return answer->second;
}

void ElementWalk::FilterElement(HierarchyElement& element, const Var& base) const {
    Var metadata = element.GetProperty(Prop::kMetadata, 0);
    if (RemoveRepeatedMetadata(metadata, base)) element.SetProperty(Prop::kMetadata, metadata);
}

const ElementWalk::Links& ElementWalk::PreparedSelectors(Instance& instance, const Var& base) {
    static const Links kNone;
    const auto* impl = Cast<InstanceImpl>(&instance);
    const VarMap* selectors = impl ? impl->Selectors().ToMap() : nullptr;
    if (!selectors) return kNone;
    const auto [place, isNew] = linking_.try_emplace(&instance);
    for (int i = 0; isNew && i < selectors->GetCount(); ++i) {
        auto* selector = Cast<PersistentSelectorImpl>(selectors->ValueAt(i));
        if (!selector) continue;
        FilterElement(*selector, base);
        const bool links = selector->GetProperty(Prop::kLink, 0).IsSet() ||
                           selector->GetProperty(Prop::kLinkList, 0).IsSet();
        if (links) place->second.emplace_back(selector);
    }
    return place->second;
}

}  // namespace

void ApplyElementsToNodes(k3::Node& node, const String& path, LookupTable* table,
                          const InstanceToNodes& nodes, std::map<PersistentSelector*, k3::Node*>& answers) {
    ElementWalk(table, nodes, answers).Run(node, path);
}

}  // namespace qn::graph

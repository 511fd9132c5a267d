#include "exchange/tree_writer.h"

#include "graph/node_content.h"

namespace qn::exchange {
namespace {

namespace Prop = graph::Prop;

/// The node after `node` below `top`, parents first, at most `levels` deep. `level` is that of the node (1
/// for the top) and follows it; null at the end.
k3::Node* Next(k3::Node* node, const k3::Node* top, int levels, int& level) {
    if (level < levels && node->GetFirstChild()) {
        ++level;
        return node->GetFirstChild();
    }
    for (; node && node != top; node = node->GetParent(), --level)
        if (k3::Node* next = node->GetNextSibling()) return next;
    return nullptr;
}

}  // namespace

template <class Element>
std::size_t TreeWriter::Table<Element>::NumberOf(Element* element) {
    const auto [entry, isNew] = numbers.try_emplace(element, elements.size());
    if (isNew) elements.push_back(element);
    return entry->second;
}

void TreeWriter::Write(const std::vector<k3::Node*>& tops) {
    WriteSelectors(tops);
    WriteNodes();
    WriteEntities();
}

void TreeWriter::WriteSelectors(const std::vector<k3::Node*>& tops) {
    json_.Key("selectors");
    json_.BeginArray();
    for (k3::Node* top : tops)
        WriteTree(top);
    json_.EndArray();
}

void TreeWriter::WriteTree(k3::Node* top) {
    int level = 1;
    for (k3::Node* node = top; node; node = Next(node, top, options_.levels, level)) {
        path_.resize(static_cast<std::size_t>(level - 1));
        WriteSelector(*node);
        path_.push_back(nextSelector_++);
    }
}

void TreeWriter::WriteSelector(k3::Node& node) {
    json_.BeginObject();
    json_.IntegerField("number", nextSelector_);
    json_.Key("parent");
    path_.empty() ? json_.Null() : json_.Integer(path_.back());
    json_.TextField("name", node.GetName());
    if (auto* instance = graph::CarriedInstance(node))
        json_.IntegerField("node", static_cast<std::int64_t>(instances_.NumberOf(instance)));
    WriteData(node.GetParamVar(Param::kBsId), node.GetParamVar(Param::kExternalIds),
              Var(node.GetMetadata(false)));
    Matrix4<double> matrix;
    node.GetMatrix(&matrix, 0);
    if (options_.matrices && !matrix.IsIdentity(0.0)) values_.WriteField("matrix", Var(matrix));
    json_.EndObject();
}

void TreeWriter::WriteNodes() {
    json_.Key("nodes");
    json_.BeginArray();
    for (graph::Instance* instance : instances_.elements) {
        json_.BeginObject();
        if (graph::Reference* reference = instance->GetReference())
            json_.IntegerField("entity", static_cast<std::int64_t>(references_.NumberOf(reference)));
        WriteElement(*instance);
        json_.EndObject();
    }
    json_.EndArray();
}

void TreeWriter::WriteEntities() {
    json_.Key("entities");
    json_.BeginArray();
    for (const graph::Reference* reference : references_.elements) {
        json_.BeginObject();
        WriteElement(*reference);
        json_.EndObject();
    }
    json_.EndArray();
}

void TreeWriter::WriteElement(const graph::HierarchyElement& element) {
    values_.WriteField("name", element.GetProperty(Prop::kName, 0));
    WriteData(element.GetProperty(Prop::kBsId, 0), element.GetProperty(Prop::kExternalIds, 0),
              element.GetProperty(Prop::kMetadata, 0));
}

void TreeWriter::WriteData(const Var& bsId, const Var& externalIds, const Var& metadata) {
    values_.WriteField("bs_id", bsId);
    if (options_.externalIds) values_.WriteField("external_ids", externalIds);
    if (options_.metadata) values_.WriteField("metadata", metadata);
}

}  // namespace qn::exchange

#include "frame/host/node.h"
#include "frame/host/selector.h"
#include "graph/instance.h"
#include "graph/lookup_table.h"

namespace qn::graph {
namespace {

constexpr int kNameBuffer = 0x200;  // characters, the terminator included

Var NameOf(const k3::Node& node) {
    wchar_t buffer[kNameBuffer] = L"";
    node.GetName().Get(buffer, kNameBuffer);
    return Var(buffer);
}

/// Empty for the identity.
Var ValueOf(const Matrix4<double>& matrix) {
    return matrix.IsIdentity(0.0) ? Var() : Var(matrix);
}

Var MatrixOf(const k3::Node& node, int which) {
    Matrix4<double> matrix;
    node.GetMatrix(&matrix, which);
    return ValueOf(matrix);
}

Var ThirdMatrixOf(const k3::Node& node) {
    Matrix4<double> matrix;
    node.GetThirdMatrix(&matrix);
    return ValueOf(matrix);
}

Var NonZero(int value) {
    return value != 0 ? Var(value) : Var();
}

struct OwnAttribute {
    PropEnum id;
    Var (*read)(const k3::Node& node);
};

/// In the order of the comparison.
constexpr OwnAttribute kOwnAttributes[] = {
    {Prop::kBlockA, [](const k3::Node& node) { return node.GetParamVar(Param::kBlockA); }},
    {Prop::kBlockB, [](const k3::Node& node) { return node.GetParamVar(Param::kBlockB); }},
    {Prop::kInteger, [](const k3::Node& node) { return NonZero(node.GetIntegerAttribute()); }},
    {Prop::kExcluded, [](const k3::Node&) { return Var(); }},  // written by a traverser, never read
    {Prop::kLocalMatrix, [](const k3::Node& node) { return MatrixOf(node, 0); }},
    {Prop::kName, &NameOf},
    {Prop::kOwnMatrix, [](const k3::Node& node) { return MatrixOf(node, 1); }},
    {Prop::kShortValue, [](const k3::Node& node) { return NonZero(node.GetShortValue()); }},
    {Prop::kThirdMatrix, &ThirdMatrixOf},
    {Prop::kParam8a, [](const k3::Node& node) { return node.GetParamVar(Param::kParam8a); }},
};

Counted<Instance> InstanceOf(k3::Node& node, LookupTable* table) {
    if (auto* own = Cast<Instance>(node.GetParamVar(Param::kInstance))) return Counted<Instance>(own);
    return table ? table->GetInstanceOfNode(&node) : Counted<Instance>();
}

}  // namespace

bool SelectorHasOwnAttributes(k3::Node* node, SelectorData& data, LookupTable* table, bool) {
    if (!node) return false;
    const Counted<Instance> instance = InstanceOf(*node, table);
    bool any = false;
    for (const OwnAttribute& attribute : kOwnAttributes) {
        const Var value = attribute.read(*node);
        if (value.IsEmpty() || (instance && value == instance->GetProperty(attribute.id, 1))) continue;
        data.attributes.At(Key(attribute.id)) = value;
        any = true;
    }
    return any;
}

}  // namespace qn::graph

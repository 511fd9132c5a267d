#include "graph/node_properties.h"

#include "frame/host/collections.h"

#include <algorithm>
#include <cstdint>

namespace qn::graph {

namespace {

using k3::Node;

constexpr int kNameBuffer = 0x200;  ///< characters, the terminator included
constexpr float kOpaque = 1.0f;
constexpr double kExact = 0.0;

bool IsInteger(const Var& value) {
    return value.GetTag() == VarTag::kInt || value.GetTag() == VarTag::kInt64;
}
bool IsNumber(const Var& value) {
    return value.GetTag() == VarTag::kFloat || value.GetTag() == VarTag::kDouble;
}
bool IsBool(const Var& value) {
    return value.GetTag() == VarTag::kBool;
}

// Readers.

Var ReadName(const Node& node) {
    const String& name = node.GetName();
    return Var(name.Length() < kNameBuffer ? name : name.SubString(0, kNameBuffer - 1));
}

Var UnlessIdentity(const Matrix4<double>& matrix) {
    return matrix.IsIdentity(kExact) ? Var() : Var(matrix);
}

template <int Which>
Var ReadMatrix(const Node& node) {
    Matrix4<double> matrix;
    node.GetMatrix(&matrix, Which);
    return UnlessIdentity(matrix);
}

Var ReadThirdMatrix(const Node& node) {
    Matrix4<double> matrix;
    node.GetThirdMatrix(&matrix);
    return UnlessIdentity(matrix);
}

template <unsigned Mask>
Var ReadFlag(const Node& node) {
    return (node.GetFlags() & Mask) != 0 ? Var(true) : Var();
}

template <int Id>
Var ReadParam(const Node& node) {
    return node.GetParamVar(Id);
}

Var ReadInteger(const Node& node) {
    const int value = node.GetIntegerAttribute();
    return value != 0 ? Var(value) : Var();
}

Var ReadShort(const Node& node) {
    const int value = node.GetShortValue();
    return value != 0 ? Var(value) : Var();
}

Var ReadMetadata(const Node& node) {
    return Var(node.GetMetadata(false), 1);
}

Var ReadLinkList(const Node& node) {
    return Var(node.GetParamVar(Param::kLinkList).ToArray(), 1);
}

Var ReadOpacity(const Node& node) {
    const float opacity = node.GetOpacity();
    return opacity != kOpaque ? Var(opacity) : Var();
}

Var ReadText(const Node& node) {
    const String text = node.GetText();
    return text.NonEmpty() ? Var(text) : Var();
}

// Writers.

void WriteName(Node& node, const Var& value) {
    String name;
    if (value.copy_to(name)) node.SetName(name.c_str());
}

template <int Which>
void WriteMatrix(Node& node, const Var& value) {
    Matrix4<double> matrix;
    if (value.IsMatrix() && value.copy_to(matrix)) node.SetMatrix(&matrix, Which);
}

void WriteThirdMatrix(Node& node, const Var& value) {
    Matrix4<double> matrix;
    if (value.IsMatrix() && value.copy_to(matrix)) node.SetThirdMatrix(matrix);
}

void WriteHidden(Node& node, const Var& value) {
    if (IsBool(value)) node.SetParamVar(Param::kVisible, Var(!value.ToBool()));
}

void WriteInteger(Node& node, const Var& value) {
    if (IsInteger(value)) node.SetIntegerAttribute(value.ToInt(), 0);
}

void WriteShort(Node& node, const Var& value) {
    if (IsInteger(value)) node.SetShortValue(static_cast<std::int16_t>(value.ToInt()));
}

template <int Id>
void WriteBlock(Node& node, const Var& value) {
    if (value.GetTag() == VarTag::kBlock) node.SetParamVar(Id, value);
}

template <int Id>
void WriteParam(Node& node, const Var& value) {
    node.SetParamVar(Id, value);
}

template <int Id>
void WriteParamIfTrue(Node& node, const Var& value) {
    if (value.ToBool()) node.SetParamVar(Id, value);
}

void WriteNoViewports(Node& node, const Var& value) {
    if (value.ToBool()) node.SetParamVar(Param::kNoViewports, Var(true));
}

void WriteMetadata(Node& node, const Var& value) {
    if (!value.IsMap()) return;
    Var copy = value;
    copy.MakeUnique(1);
    node.SetMetadata(copy.ToMap());
}

void Raise(Node& node, unsigned mask) {
    node.SetFlags(node.GetFlags() | mask);
}

/// A bool or an integer raises the flag, false and 0 as well.
template <unsigned Mask>
void WriteFlagWhatever(Node& node, const Var& value) {
    if (IsBool(value) || IsInteger(value)) Raise(node, Mask);
}

template <unsigned Mask>
void WriteFlagIfTrue(Node& node, const Var& value) {
    if (value.ToBool()) Raise(node, Mask);
}

template <unsigned Mask>
void WriteFlagIfTrueBool(Node& node, const Var& value) {
    if (IsBool(value) && value.ToBool()) Raise(node, Mask);
}

void WriteOpacity(Node& node, const Var& value) {
    float opacity = kOpaque;
    if (IsNumber(value) && value.copy_to(opacity)) node.SetOpacity(std::clamp(opacity, 0.0f, 1.0f));
}

void WriteText(Node& node, const Var& value) {
    if (value.IsText()) node.SetText(value.ToText());
}

struct PropertyRow {
    PropEnum id;
    Var (*read)(const Node& node);                ///< null: reads as empty
    void (*write)(Node& node, const Var& value);  ///< null: ignored
};

constexpr PropertyRow kRows[] = {
    {Prop::kName, &ReadName, &WriteName},
    {Prop::kLocalMatrix, &ReadMatrix<0>, &WriteMatrix<0>},
    {Prop::kOwnMatrix, &ReadMatrix<1>, &WriteMatrix<1>},
    {Prop::kThirdMatrix, &ReadThirdMatrix, &WriteThirdMatrix},
    {Prop::kHidden, &ReadFlag<NodeFlag::kHidden>, &WriteHidden},
    {Prop::kInteger, &ReadInteger, &WriteInteger},
    {Prop::kBlockA, &ReadParam<Param::kBlockA>, &WriteBlock<Param::kWrittenBlockA>},
    {Prop::kBlockB, &ReadParam<Param::kBlockB>, &WriteBlock<Param::kWrittenBlockB>},
    {Prop::kLink, &ReadParam<Param::kNodeLink9>, nullptr},
    {Prop::kMetadata, &ReadMetadata, &WriteMetadata},
    {Prop::kStopsInstancing, &ReadFlag<NodeFlag::kStopsInstancing | NodeFlag::kFlag200000>,
     &WriteFlagWhatever<NodeFlag::kStopsInstancing>},
    {Prop::kFlag8000, &ReadFlag<NodeFlag::kFlag8000>, &WriteFlagWhatever<NodeFlag::kFlag8000>},
    {Prop::kExternalIds, &ReadParam<Param::kExternalIds>, &WriteParam<Param::kExternalIds>},
    {Prop::kBsId, &ReadParam<Param::kBsId>, &WriteParam<Param::kBsId>},
    {Prop::kShortValue, &ReadShort, &WriteShort},
    {Prop::kLinkList, &ReadLinkList, nullptr},
    {Prop::kExcluded, nullptr, &WriteFlagIfTrue<NodeFlag::kExcluded | NodeFlag::kStopsInstancing>},
    {Prop::kParam8a, &ReadParam<Param::kParam8a>, &WriteParamIfTrue<Param::kParam8a>},
    {Prop::kNoViewports, &ReadParam<Param::kNoViewports>, &WriteNoViewports},
    {Prop::kOpacity, &ReadOpacity, &WriteOpacity},
    {Prop::kFlag20000000, &ReadFlag<NodeFlag::kFlag20000000>, &WriteFlagIfTrue<NodeFlag::kFlag20000000>},
    {Prop::kText, &ReadText, &WriteText},
    {Prop::kFlag40000, &ReadFlag<NodeFlag::kFlag40000>, &WriteFlagIfTrueBool<NodeFlag::kFlag40000>},
    {Prop::kAttachedIdentifier, &ReadParam<Param::kAttachedIdentifier>,
     &WriteParam<Param::kAttachedIdentifier>},
};

/// The rows by number: 36 of them are asked for on every node.
struct RowsByNumber {
    const PropertyRow* rows[kLastProp + 1] = {};
    constexpr RowsByNumber() {
        for (const PropertyRow& row : kRows)
            rows[Key(row.id)] = &row;
    }
};

constexpr RowsByNumber kByNumber;

const PropertyRow* RowOf(PropEnum id) {
    return Key(id) >= kFirstProp && Key(id) <= kLastProp ? kByNumber.rows[Key(id)] : nullptr;
}

}  // namespace

Var ReadNodeProperty(const Node& node, PropEnum id) {
    const PropertyRow* row = RowOf(id);
    return row && row->read ? row->read(node) : Var();
}

void WriteNodeProperty(Node& node, PropEnum id, const Var& value) {
    const PropertyRow* row = RowOf(id);
    if (row && row->write) row->write(node, value);
}

}  // namespace qn::graph

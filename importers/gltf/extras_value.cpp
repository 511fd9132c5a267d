#include "importers/gltf/extras_value.h"

#include "frame/host/collections.h"
#include "importers/gltf/gltf_extras_keys.h"

#include <array>
#include <limits>
#include <optional>
#include <string>

namespace qn::gltf {
namespace {

namespace Form = gltf_extras::Form;

bool IsNumber(const Var& value) {
    return value.GetTag() >= VarTag::kInt && value.GetTag() <= VarTag::kDouble;
}

/// A number, or the text of one that is not finite.
std::optional<double> NumberOf(const Var& json) {
    double number = 0;
    if (IsNumber(json) && json.copy_to(number)) return number;
    if (!json.IsText()) return std::nullopt;
    const std::string text = json.ToText().ToUtf8();
    if (text == gltf_extras::kNan) return std::numeric_limits<double>::quiet_NaN();
    if (text == gltf_extras::kInfinite) return std::numeric_limits<double>::infinity();
    if (text == gltf_extras::kMinusInfinite) return -std::numeric_limits<double>::infinity();
    return std::nullopt;
}

std::optional<Var> Int64Of(const Var& json) {
    std::int64_t number = 0;
    if (!IsNumber(json) || !json.copy_to(number)) return std::nullopt;
    return Var(number);
}

std::optional<Var> FloatOf(const Var& json) {
    const auto number = NumberOf(json);
    return number ? std::optional(Var(static_cast<float>(*number))) : std::nullopt;
}

std::optional<Var> DoubleOf(const Var& json) {
    const auto number = NumberOf(json);
    return number ? std::optional(Var(*number)) : std::nullopt;
}

std::optional<Var> MatrixOf(const Var& json) {
    Matrix4<double> matrix;
    return ReadMatrix(json, matrix) ? std::optional(Var(matrix)) : std::nullopt;
}

std::optional<Var> MapOf(const Var& json) {
    const VarArray* rows = json.ToArray();
    if (!rows) return std::nullopt;
    const auto map = VarMap::Create();
    for (int i = 0; i < rows->GetCount(); ++i) {
        const VarArray* row = rows->Get(i).ToArray();
        if (!row || row->GetCount() != 2) return std::nullopt;
        map->At(MeantValue(row->Get(0))) = MeantValue(row->Get(1));
    }
    return Var(map);
}

int SixBitsOf(char letter) {
    if (letter >= 'A' && letter <= 'Z') return letter - 'A';
    if (letter >= 'a' && letter <= 'z') return letter - 'a' + 26;
    if (letter >= '0' && letter <= '9') return letter - '0' + 52;
    if (letter == '+') return 62;
    return letter == '/' ? 63 : -1;
}

std::optional<Var> BytesOf(const Var& json) {
    if (!json.IsText()) return std::nullopt;
    std::string text = json.ToText().ToUtf8();
    if (text.size() % 4 != 0) return std::nullopt;
    while (!text.empty() && text.back() == '=')
        text.pop_back();
    std::string bytes;
    unsigned bits = 0;
    int held = 0;
    for (const char letter : text) {
        const int six = SixBitsOf(letter);
        if (six < 0) return std::nullopt;
        bits = bits << 6 | static_cast<unsigned>(six);
        held += 6;
        if (held < 8) continue;
        held -= 8;
        bytes += static_cast<char>(bits >> held & 0xff);
    }
    return Var::Block(bytes.data(), bytes.size());
}

std::optional<Var> FlaggedOf(const Var& json) {
    const VarArray* pair = json.ToArray();
    std::int64_t flags = 0;
    if (!pair || pair->GetCount() != 2 || !IsNumber(pair->Get(0)) || !pair->Get(0).copy_to(flags))
        return std::nullopt;
    Var value = MeantValue(pair->Get(1));
    value.SetValueFlags(static_cast<unsigned>(flags));
    return value;
}

struct FormRow {
    const char* key;
    std::optional<Var> (*read)(const Var& json);
};
constexpr FormRow kForms[] = {
    {Form::kInt64, &Int64Of},   {Form::kFloat, &FloatOf}, {Form::kNumber, &DoubleOf}, {Form::kMap, &MapOf},
    {Form::kMatrix, &MatrixOf}, {Form::kBytes, &BytesOf}, {Form::kFlags, &FlaggedOf},
};

std::optional<Var> FormOf(const VarMap& map) {
    if (map.GetCount() != 1 || map.KeyAt(0).ToText().At(0) != L'$') return std::nullopt;
    const std::string key = map.KeyAt(0).ToText().ToUtf8();
    for (const FormRow& row : kForms)
        if (key == row.key) return row.read(map.ValueAt(0));
    return std::nullopt;
}

Var MeantMap(const VarMap& map) {
    if (auto form = FormOf(map)) return *form;
    const auto result = VarMap::Create();
    for (int i = 0; i < map.GetCount(); ++i)
        result->At(map.KeyAt(i)) = MeantValue(map.ValueAt(i));
    return Var(result);
}

Var MeantArray(const VarArray& array) {
    const auto result = VarArray::Create();
    for (int i = 0; i < array.GetCount(); ++i)
        result->Add(MeantValue(array.Get(i)));
    return Var(result);
}

}  // namespace

Var MeantValue(const Var& json) {
    if (const VarMap* map = json.ToMap()) return MeantMap(*map);
    if (const VarArray* array = json.ToArray()) return MeantArray(*array);
    return json;
}

bool ReadMatrix(const Var& json, Matrix4<double>& out) {
    const VarArray* numbers = json.ToArray();
    if (!numbers || numbers->GetCount() != 16) return false;
    for (int i = 0; i < 16; ++i) {
        const auto number = NumberOf(numbers->Get(i));
        if (!number) return false;
        out.m[i / 4][i % 4] = *number;
    }
    return true;
}

}  // namespace qn::gltf

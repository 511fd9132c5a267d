#include "exporters/gltf/value_json.h"

#include "exporters/gltf/export_failure.h"
#include "exporters/gltf/json_text.h"
#include "frame/host/collections.h"
#include "importers/gltf/gltf_extras_keys.h"
#include "importers/gltf/gltf_limits.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace qn::gltf_export {
namespace {

namespace Form = gltf_extras::Form;
using gltf_limits::kDeepestMetadata;

void OpenForm(std::string& out, const char* form) {
    out += "{\"", out += form, out += "\":";
}

bool FitsIntoInt(std::int64_t number) {
    return number >= std::numeric_limits<int>::min() && number <= std::numeric_limits<int>::max();
}

void AppendWhole(std::string& out, const Var& value) {
    std::int64_t number = 0;
    value.copy_to(number);
    const bool needsForm = value.GetTag() == VarTag::kInt64 && FitsIntoInt(number);
    if (needsForm) OpenForm(out, Form::kInt64);
    AppendInteger(out, number);
    if (needsForm) out += '}';
}

void AppendNotFinite(std::string& out, double number) {
    if (std::isnan(number)) return AppendText(out, gltf_extras::kNan);
    AppendText(out, number > 0 ? gltf_extras::kInfinite : gltf_extras::kMinusInfinite);
}

void AppendFraction(std::string& out, const Var& value) {
    double number = 0;
    value.copy_to(number);
    const bool isFloat = value.GetTag() == VarTag::kFloat, isFinite = std::isfinite(number);
    if (isFloat || !isFinite) OpenForm(out, isFloat ? Form::kFloat : Form::kNumber);
    isFinite ? AppendReal(out, number) : AppendNotFinite(out, number);
    if (isFloat || !isFinite) out += '}';
}

void AppendBase64(std::string& out, std::string_view bytes) {
    constexpr char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    out += '"';
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        unsigned group = 0;
        for (std::size_t k = 0; k < 3; ++k)
            group = group << 8 | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0u);
        for (std::size_t k = 0; k < 4; ++k)
            out += i + k <= bytes.size() ? kLetters[group >> (18 - 6 * k) & 0x3f] : '=';
    }
    out += '"';
}

bool IsFormName(const Var& key) {
    const std::string text = key.ToText().ToUtf8();
    return std::any_of(std::begin(Form::kAll), std::end(Form::kAll),
                       [&](const char* form) { return text == form; });
}

bool IsShownRow(const VarMap& map, int row) {
    return map.KeyAt(row).GetTag() != VarTag::kObject && map.ValueAt(row).GetTag() != VarTag::kObject;
}

/// Whether the map can be an object: all keys are texts that survive as UTF-8, and it looks like no form.
bool IsPlainMap(const VarMap& map) {
    int shown = 0, forms = 0;
    for (int i = 0; i < map.GetCount(); ++i) {
        const Var& key = map.KeyAt(i);
        if (!IsShownRow(map, i)) continue;
        if (!key.IsText() || key.GetValueFlags() != 0) return false;
        ++shown;
        forms += IsFormName(key) ? 1 : 0;
    }
    return shown != 1 || forms == 0;
}

class Writer {
public:
    explicit Writer(std::string& out) : out_(out) {}

    void Write(const Var& value) {
        const unsigned flags = value.GetValueFlags();
        if (flags == 0) return WriteContent(value);
        OpenForm(out_, Form::kFlags);
        out_ += '[', AppendIndex(out_, flags), out_ += ',';
        WriteContent(value);
        out_ += "]}";
    }

private:
    /// A map or array that is open at present.
    class Nesting {
    public:
        explicit Nesting(Writer& writer) : writer_(writer) {
            if (++writer_.depth_ > kDeepestMetadata)
                throw ExportFailure(Outcome::kLimit, "maps and arrays are nested deeper than " +
                                                         std::to_string(kDeepestMetadata) + " levels");
        }
        ~Nesting() { --writer_.depth_; }
        Nesting(const Nesting&) = delete;
        Nesting& operator=(const Nesting&) = delete;

    private:
        Writer& writer_;
    };

    void WriteContent(const Var& value) {
        switch (value.GetTag()) {
            case VarTag::kInt:
            case VarTag::kInt64:
                return AppendWhole(out_, value);
            case VarTag::kFloat:
            case VarTag::kDouble:
                return AppendFraction(out_, value);
            case VarTag::kText:
                return AppendText(out_, value.ToText().ToUtf8());
            case VarTag::kBool:
                out_ += value.ToBool() ? "true" : "false";
                return;
            case VarTag::kBlock:
                OpenForm(out_, Form::kBytes);
                AppendBase64(out_, value.BlockBytes());
                out_ += '}';
                return;
            case VarTag::kMatrix:
                return WriteMatrix(value);
            case VarTag::kArray:
                return WriteArray(value.ToArray());
            case VarTag::kMap:
                return WriteMap(value.ToMap());
            default:
                out_ += "null";
        }
    }

    void WriteMatrix(const Var& value) {
        Matrix4<double> matrix;
        value.copy_to(matrix);
        OpenForm(out_, Form::kMatrix);
        out_ += '[';
        Comma comma;
        for (const auto& row : matrix.m)
            for (const double number : row) {
                comma.To(out_);
                std::isfinite(number) ? AppendNumber(out_, number) : AppendNotFinite(out_, number);
            }
        out_ += "]}";
    }

    void WriteArray(const VarArray* array) {
        if (!array) return void(out_ += "null");  // watched, and gone
        const Nesting nesting(*this);
        out_ += '[';
        Comma comma;
        for (int i = 0; i < array->GetCount(); ++i) {
            comma.To(out_);
            Write(array->Get(i));
        }
        out_ += ']';
    }

    void WriteMap(const VarMap* map) {
        if (!map) return void(out_ += "null");
        IsPlainMap(*map) ? WriteObject(*map) : WriteRows(*map);
    }

    void WriteObject(const VarMap& map) {
        const Nesting nesting(*this);
        out_ += '{';
        Comma comma;
        for (int i = 0; i < map.GetCount(); ++i) {
            if (!IsShownRow(map, i)) continue;
            comma.To(out_);
            AppendText(out_, map.KeyAt(i).ToText().ToUtf8());
            out_ += ':';
            Write(map.ValueAt(i));
        }
        out_ += '}';
    }

    void WriteRows(const VarMap& map) {
        const Nesting nesting(*this);
        OpenForm(out_, Form::kMap);
        out_ += '[';
        Comma comma;
        for (int i = 0; i < map.GetCount(); ++i) {
            if (!IsShownRow(map, i)) continue;
            comma.To(out_);
            out_ += '[';
            Write(map.KeyAt(i));
            out_ += ',';
            Write(map.ValueAt(i));
            out_ += ']';
        }
        out_ += "]}";
    }

    std::string& out_;
    int depth_ = 0;
};

}  // namespace

void AppendValue(std::string& out, const Var& value) {
    Writer(out).Write(value);
}

bool IsWritable(const Var& value) {
    return value.IsSet() && value.GetTag() != VarTag::kObject;
}

}  // namespace qn::gltf_export

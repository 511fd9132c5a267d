#include "exporters/gltf/tables_writer.h"

#include "exporters/gltf/json_text.h"
#include "exporters/gltf/value_json.h"
#include "importers/gltf/gltf_extras_keys.h"

namespace qn::gltf_export {
namespace {

using gltf_extras::PropertyForm;
using gltf_extras::PropertyRow;
namespace Prop = graph::Prop;
namespace Word = gltf_extras::Word;

void AppendProperty(std::string& out, Comma& comma, const PropertyRow& row, const Var& value) {
    if (!IsWritable(value)) return;
    comma.Key(out, row.key);
    Matrix4<double> matrix;
    const bool isPlainMatrix = row.form == PropertyForm::kMatrix && value.IsMatrix() &&
                               value.GetValueFlags() == 0 && value.copy_to(matrix) && IsWritablePlace(matrix);
    isPlainMatrix ? AppendMatrix(out, matrix) : AppendValue(out, value);
}

class Writer {
public:
    Writer(const ExportModel& model, Sink& sink) : model_(model), sink_(sink), out_(sink.Text()) {}

    void Write() {
        WriteHead();
        WriteList(Word::kDefinitions, model_.definitions, [&](const DefinitionRow& row) { WriteRow(row); });
        WriteList(Word::kUses, model_.uses, [&](const UseRow& row) { WriteRow(row); });
        if (!model_.overrides.empty())
            WriteList(Word::kOverrides, model_.overrides, [&](const OverrideRow& row) { WriteRow(row); });
        out_ += '}';
    }

private:
    void WriteHead() {
        out_ += '{';
        comma_.Key(out_, Word::kVersion);
        AppendInteger(out_, gltf_extras::kVersion);
        comma_.Key(out_, Word::kUnit);
        AppendText(out_, "mm");
        comma_.Key(out_, Word::kUp);
        AppendText(out_, model_.isUpY ? "y" : "z");
        comma_.Key(out_, Word::kFrame);
        out_ += '0';
        if (model_.container == kNone) return;
        comma_.Key(out_, Word::kContainer);
        AppendIndex(out_, model_.container);
    }

    template <class Rows, class WriteOne>
    void WriteList(const char* key, const Rows& rows, WriteOne&& writeOne) {
        comma_.Key(out_, key);
        out_ += '[';
        const char* separator = "\n";
        for (const auto& row : rows) {
            out_ += separator, out_ += '{';
            WriteNamed(row, writeOne);
            out_ += '}';
            separator = ",\n";
            sink_.Pass();
        }
        out_ += ']';
    }

    /// A failure names the row.
    template <class Row, class WriteOne>
    static void WriteNamed(const Row& row, WriteOne&& writeOne) {
        try {
            writeOne(row);
        } catch (const ExportFailure& failure) {
            throw ExportFailure(failure.What(), NameOf(row) + failure.what());
        }
    }
    template <class Row>
    static std::string NameOf(const Row& row) {
        return row.name.empty() ? std::string() : "\"" + row.name + "\": ";
    }

    void WriteRow(const DefinitionRow& row) {
        Comma comma;
        WriteProperties(comma, *row.reference, true);
        if (row.mesh != kNone) {
            comma.Key(out_, Word::kMesh);
            AppendIndex(out_, row.mesh);
        }
        const Var target = row.reference->GetTarget();
        if (!target.IsText() && !target.IsArray() && !target.IsMap()) return;
        comma.Key(out_, target.IsText() ? Word::kFile : Word::kTarget);
        AppendValue(out_, target);
    }

    void WriteRow(const UseRow& row) {
        Comma comma;
        if (row.parent != kNone) {
            comma.Key(out_, Word::kParent);
            AppendIndex(out_, row.parent);
        }
        comma.Key(out_, Word::kDefinition);
        AppendIndex(out_, row.definition);
        if (row.instance) WriteProperties(comma, *row.instance, !row.nodeSaysMatrix);
        const bool saysNoMatrix =
            !row.nodeSaysMatrix &&
            (!row.instance || !IsWritable(row.instance->GetProperty(Prop::kLocalMatrix, 0)));
        if (!saysNoMatrix) return;
        comma.Key(out_, Word::kMatrix);
        out_ += "null";
    }

    void WriteRow(const OverrideRow& row) {
        Comma comma;
        comma.Key(out_, Word::kUse);
        AppendIndex(out_, row.use);
        comma.Key(out_, Word::kPath);
        out_ += '[';
        Comma between;
        for (const std::uint32_t use : row.path) {
            between.To(out_);
            AppendIndex(out_, use);
        }
        out_ += ']';
        comma.Key(out_, Word::kAttributes);
        out_ += '{';
        Comma inner;
        for (const PropertyRow& property : gltf_extras::kProperties)
            if (const Var* value = row.attributes.Lookup(graph::Key(property.id)))
                AppendProperty(out_, inner, property, *value);
        out_ += '}';
    }

    void WriteProperties(Comma& comma, const graph::HierarchyElement& element, bool withMatrix) {
        for (const PropertyRow& row : gltf_extras::kProperties) {
            if (row.id == Prop::kLocalMatrix && !withMatrix) continue;
            if (row.id == Prop::kLocalId && !element.GetProperty(Prop::kKeepLocalId, 0).IsSet()) continue;
            AppendProperty(out_, comma, row, element.GetProperty(row.id, 0));
        }
    }

    const ExportModel& model_;
    Sink& sink_;
    std::string& out_;
    Comma comma_;
};

}  // namespace

void WriteTables(const ExportModel& model, Sink& sink) {
    Writer(model, sink).Write();
}

}  // namespace qn::gltf_export

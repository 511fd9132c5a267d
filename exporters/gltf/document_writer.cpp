#include "exporters/gltf/document_writer.h"

#include "exporters/gltf/json_text.h"
#include "exporters/gltf/node_writer.h"
#include "exporters/gltf/tables_writer.h"

#include <algorithm>

namespace qn::gltf_export {
namespace {

constexpr int kFloat = 5126, kUnsignedShort = 5123, kUnsignedInt = 5125;
constexpr int kVertexTarget = 34962, kIndexTarget = 34963;
constexpr int kVertexStride = 3 * sizeof(float);
constexpr double kRoughness = 0.6;
/// What is shown where no material is set.
constexpr std::array<float, 4> kUnassignedColour{0.8f, 0.8f, 0.8f, 1.0f};

/// Views of the buffer that are there, in the order in which their bytes stand.
struct Views {
    explicit Views(const MeshPlan& plan) {
        vertices = 0;
        longIndices = 1;
        shortIndices = plan.LongIndexBytes() > 0 ? 2 : 1;
    }
    std::uint32_t vertices, longIndices, shortIndices;
};

class Writer {
public:
    Writer(const MeshPlan& plan, Sink& sink) : plan_(plan), views_(plan), sink_(sink), out_(sink.Text()) {}

    void Write(const std::string& bufferUri) {
        if (plan_.Meshes().empty()) return;
        List("meshes", plan_.Meshes(), [&](const MeshRow& row) { WriteMesh(row); });
        List("materials", plan_.Materials(), [&](const k3::Material* material) { WriteMaterial(material); });
        out_ += ",\n\"accessors\":[";
        Comma comma;
        for (const MeshRow& row : plan_.Meshes())
            WriteAccessors(row, comma);
        out_ += "],\n\"bufferViews\":[";
        WriteViews();
        out_ += "],\n\"buffers\":[{";
        if (!bufferUri.empty()) {
            out_ += "\"uri\":";
            AppendText(out_, bufferUri);
            out_ += ',';
        }
        Number("byteLength", plan_.BufferBytes());
        out_ += "}]";
    }

private:
    template <class Rows, class WriteOne>
    void List(const char* key, const Rows& rows, WriteOne&& writeOne) {
        out_ += ",\n\"", out_ += key, out_ += "\":[";
        const char* separator = "\n";
        for (const auto& row : rows) {
            out_ += separator;
            writeOne(row);
            separator = ",\n";
            sink_.Pass();
        }
        out_ += ']';
    }

    void Number(const char* key, std::uint64_t number) {
        out_ += '"', out_ += key, out_ += "\":";
        AppendIndex(out_, number);
    }

    void WriteMesh(const MeshRow& row) {
        out_ += '{';
        if (!row.name.empty()) {
            out_ += "\"name\":";
            AppendText(out_, row.name);
            out_ += ',';
        }
        out_ += "\"primitives\":[";
        Comma comma;
        for (const PrimitiveRow& primitive : row.primitives) {
            comma.To(out_);
            out_ += "{\"attributes\":{";
            Number("POSITION", row.firstAccessor);
            if (row.hasNormals) out_ += ',', Number("NORMAL", row.firstAccessor + 1);
            out_ += "},", Number("indices", primitive.accessor);
            out_ += ',', Number("material", primitive.material);
            out_ += '}';
        }
        out_ += "]}";
    }

    void WriteMaterial(const k3::Material* material) {
        const std::array<float, 4> colour = material ? material->GetColour() : kUnassignedColour;
        out_ += '{';
        if (material && material->GetName().NonEmpty()) {
            out_ += "\"name\":";
            AppendText(out_, material->GetName().ToUtf8());
            out_ += ',';
        }
        out_ += "\"pbrMetallicRoughness\":{\"baseColorFactor\":[";
        Comma comma;
        for (const float part : colour) {
            comma.To(out_);
            // NaN fails both comparisons of a clamp, so it is asked for first.
            AppendNumber(out_, part >= 0 ? std::min(part, 1.0f) : 0.0f);
        }
        out_ += "],\"metallicFactor\":0,\"roughnessFactor\":";
        AppendNumber(out_, kRoughness);
        out_ += "},\"doubleSided\":true";
        if (colour[3] < 1) out_ += ",\"alphaMode\":\"BLEND\"";
        if (!material) out_ += ",\"extras\":{\"assembly\":{\"unassigned\":true}}";
        out_ += '}';
    }

    void WriteAccessors(const MeshRow& row, Comma& comma) {
        const std::uint64_t vertices = row.VertexCount();
        Accessor(comma, views_.vertices, row.vertexOffset, kFloat, vertices, "VEC3");
        out_ += ",\"min\":", Box(row.least);
        out_ += ",\"max\":", Box(row.greatest);
        out_ += '}';
        if (row.hasNormals) {
            Accessor(comma, views_.vertices, row.vertexOffset + vertices * kVertexStride, kFloat, vertices,
                     "VEC3");
            out_ += '}';
        }
        const std::uint64_t size = row.hasShortIndices ? sizeof(std::uint16_t) : sizeof(std::uint32_t);
        for (const PrimitiveRow& primitive : row.primitives) {
            Accessor(comma, row.hasShortIndices ? views_.shortIndices : views_.longIndices,
                     row.indexOffset + primitive.firstIndex * size,
                     row.hasShortIndices ? kUnsignedShort : kUnsignedInt, primitive.indexCount, "SCALAR");
            out_ += '}';
        }
        sink_.Pass();
    }

    void Accessor(Comma& comma, std::uint32_t view, std::uint64_t offset, int type, std::uint64_t count,
                  const char* shape) {
        comma.To(out_);
        out_ += "\n{", Number("bufferView", view);
        if (offset > 0) out_ += ',', Number("byteOffset", offset);
        out_ += ',', Number("componentType", static_cast<std::uint64_t>(type));
        out_ += ',', Number("count", count);
        out_ += ",\"type\":\"", out_ += shape, out_ += '"';
    }

    void Box(const std::array<float, 3>& corner) {
        out_ += '[';
        Comma comma;
        for (const float number : corner) {
            comma.To(out_);
            AppendNumber(out_, number);
        }
        out_ += ']';
    }

    void WriteViews() {
        Comma comma;
        std::uint64_t offset = 0;
        const auto view = [&](std::uint64_t bytes, int target, int stride) {
            if (bytes == 0) return;
            comma.To(out_);
            out_ += '{', Number("buffer", 0);
            if (offset > 0) out_ += ',', Number("byteOffset", offset);
            out_ += ',', Number("byteLength", bytes);
            if (stride > 0) out_ += ',', Number("byteStride", static_cast<std::uint64_t>(stride));
            out_ += ',', Number("target", static_cast<std::uint64_t>(target));
            out_ += '}';
            offset += bytes;
        };
        view(plan_.VertexBytes(), kVertexTarget, kVertexStride);
        view(plan_.LongIndexBytes(), kIndexTarget, 0);
        view(plan_.ShortIndexBytes(), kIndexTarget, 0);
    }

    const MeshPlan& plan_;
    Views views_;
    Sink& sink_;
    std::string& out_;
};

bool IsUriLetter(char letter) {
    const bool isAlphanumeric = (letter >= '0' && letter <= '9') || (letter >= 'A' && letter <= 'Z') ||
                                (letter >= 'a' && letter <= 'z');
    return isAlphanumeric || letter == '-' || letter == '.' || letter == '_' || letter == '~';
}

}  // namespace

std::string UriOf(const std::string& fileName) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string uri;
    for (const char letter : fileName) {
        if (IsUriLetter(letter)) {
            uri += letter;
            continue;
        }
        const auto code = static_cast<unsigned char>(letter);
        uri += '%', uri += kDigits[code >> 4], uri += kDigits[code & 0xf];
    }
    return uri;
}

void WriteDocument(const ExportModel& model, const MeshPlan& plan, const std::string& bufferUri, Sink& sink,
                   Context& context) {
    std::string& out = sink.Text();
    out += "{\"asset\":{\"version\":\"2.0\",\"generator\":\"assembly\"},\n\"extras\":{\"assembly\":";
    WriteTables(model, sink);
    out += "},\n\"scene\":0,\"scenes\":[{\"nodes\":[0]}],\n\"nodes\":";
    NodeWriter(model, sink, context).Write();
    Writer(plan, sink).Write(bufferUri);
    out += "}\n";
    sink.Pass();
}

}  // namespace qn::gltf_export

#pragma once

#include "importers/gltf/gltf_model.h"
#include "importers/gltf/json_reader.h"

#include <string>
#include <string_view>

namespace qn::gltf {

/// Goes once over the JSON text of a glTF file and fills a model. Members may come in any order, so indices
/// are not checked here; see `CheckModel`.
class DocumentReader {
public:
    explicit DocumentReader(Model& model) : model_(model) {}

    /// `text` has `capacity` bytes of storage, of which at least `kPadding` stand behind its end. Throws
    /// GltfError.
    void Read(const char* text, std::size_t length, std::size_t capacity);
    static constexpr std::size_t kPadding = simdjson::SIMDJSON_PADDING;

private:
    /// How one member of an object is read.
    template <class Target>
    struct Row {
        std::string_view key;
        void (*read)(DocumentReader& reader, Target& target, JsonValue& value);
    };
    /// Members without a row are passed over.
    template <class Target, std::size_t N>
    void ReadObject(JsonValue& value, Target& target, const Row<Target> (&rows)[N]) {
        json_.Members(
            value, [&](std::string_view key, JsonValue& member) { ReadMember(key, member, target, rows); });
    }
    template <class Target, std::size_t N>
    void ReadMember(std::string_view key, JsonValue& member, Target& target, const Row<Target> (&rows)[N]) {
        for (const Row<Target>& row : rows)
            if (row.key == key) return row.read(*this, target, member);
    }
    /// A list of objects of one kind, each appended to `targets`.
    template <class Target, std::size_t N>
    void ReadList(JsonValue& value, std::vector<Target>& targets, const Row<Target> (&rows)[N],
                  std::uint64_t most) {
        RefuseSecond(targets.empty());
        json_.Elements(value, [&](std::uint64_t index, JsonValue& element) {
            if (index >= most) FailTooMany(most);
            ReadObject(element, targets.emplace_back(), rows);
        });
    }
    void ReadRoot(simdjson::ondemand::document& document);
    [[noreturn]] void FailText(simdjson::error_code error, const std::string& byte) const;
    void RefuseSecond(bool isFirst) const;
    [[noreturn]] void FailTooMany(std::uint64_t most) const;

    Text AddText(std::string_view text);
    Text ReadName(JsonValue& value);
    std::uint32_t ReadExtras(JsonValue& value);
    void ReadTexts(JsonValue& value, std::vector<std::string>& out);
    /// Exactly so many numbers, appended to the model's; gives the place of the first.
    std::uint32_t ReadNumbers(JsonValue& value, std::uint32_t count);
    void ReadIndices(JsonValue& value, std::vector<std::uint32_t>& out, std::uint64_t most);

    struct NodeDraft;
    void ReadNodes(JsonValue& value);
    void ReadPlace(std::uint32_t& part, JsonValue& value, std::uint32_t count);
    void ReadChildren(Node& node, JsonValue& value);
    void ReadCopies(Node& node, JsonValue& value);
    void FinishNode(NodeDraft& draft);
    void ReadMeshes(JsonValue& value);
    void ReadPrimitive(Mesh& mesh, JsonValue& value);
    void ReadMaterials(JsonValue& value);
    void ReadCameras(JsonValue& value);
    void ReadScenes(JsonValue& value);
    void ReadBuffers(JsonValue& value);
    void ReadViews(JsonValue& value);
    void ReadAccessors(JsonValue& value);
    void ReadAsset(JsonValue& value);

    static const Row<Model> kRows[];

    Model& model_;
    JsonReader json_;
    bool hasAsset_ = false;
};

}  // namespace qn::gltf

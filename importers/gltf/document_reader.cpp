#include "importers/gltf/document_reader.h"

#include "importers/gltf/gltf_limits.h"

#include <limits>

namespace qn::gltf {
namespace {

constexpr std::size_t kMostNameBytes = std::numeric_limits<std::uint32_t>::max();

/// The byte at which the parser stands, as far as it can tell.
std::string ByteText(simdjson::ondemand::document& document, const char* text) {
    const char* at = nullptr;
    if (document.current_location().get(at) || at < text) return {};
    return " near byte " + std::to_string(at - text);
}

}  // namespace

const DocumentReader::Row<Model> DocumentReader::kRows[] = {
    {"asset", [](auto& r, Model&, auto& v) { r.ReadAsset(v); }},
    {"nodes", [](auto& r, Model&, auto& v) { r.ReadNodes(v); }},
    {"meshes", [](auto& r, Model&, auto& v) { r.ReadMeshes(v); }},
    {"materials", [](auto& r, Model&, auto& v) { r.ReadMaterials(v); }},
    {"cameras", [](auto& r, Model&, auto& v) { r.ReadCameras(v); }},
    {"scenes", [](auto& r, Model&, auto& v) { r.ReadScenes(v); }},
    {"scene", [](auto& r, Model& m, auto& v) { m.scene = r.json_.Index(v); }},
    {"buffers", [](auto& r, Model&, auto& v) { r.ReadBuffers(v); }},
    {"bufferViews", [](auto& r, Model&, auto& v) { r.ReadViews(v); }},
    {"accessors", [](auto& r, Model&, auto& v) { r.ReadAccessors(v); }},
    {"extras",
     [](auto& r, Model& m, auto& v) { m.documentExtras = r.json_.Any(v, gltf_limits::kDeepestTables); }},
    {"extensionsUsed", [](auto& r, Model& m, auto& v) { r.ReadTexts(v, m.extensionsUsed); }},
    {"extensionsRequired", [](auto& r, Model& m, auto& v) { r.ReadTexts(v, m.extensionsRequired); }},
};

void DocumentReader::Read(const char* text, std::size_t length, std::size_t capacity) {
    simdjson::ondemand::parser parser;
    simdjson::ondemand::document document;
    if (const auto error = parser.iterate(text, length, capacity).get(document)) FailText(error, {});
    try {
        ReadRoot(document);
    } catch (const simdjson::simdjson_error& error) {
        FailText(error.error(), ByteText(document, text));
    }
    if (!hasAsset_) throw GltfError("/asset: expected a version, found none");
}

/// The document itself gives the object: it sees to it that the text ends with one.
void DocumentReader::ReadRoot(simdjson::ondemand::document& document) {
    const simdjson::ondemand::json_type type = document.type();
    if (type != simdjson::ondemand::json_type::object) json_.Fail("expected an object");
    simdjson::ondemand::object root = document.get_object();
    json_.EachMember(
        root, [&](std::string_view key, JsonValue& member) { ReadMember(key, member, model_, kRows); });
    const char* rest = nullptr;
    if (!document.current_location().get(rest)) json_.Fail("expected the end of the text after its object");
}

void DocumentReader::FailText(simdjson::error_code error, const std::string& byte) const {
    if (error == simdjson::MEMALLOC) throw std::bad_alloc();
    json_.Fail("the JSON text is damaged" + byte + ": " + simdjson::error_message(error));
}

void DocumentReader::RefuseSecond(bool isFirst) const {
    if (!isFirst) json_.Fail("is given twice");
}

void DocumentReader::FailTooMany(std::uint64_t most) const {
    json_.Fail("the list has more than " + std::to_string(most) + " entries", LoadFailure::kLimit);
}

Text DocumentReader::AddText(std::string_view text) {
    const Text added{static_cast<std::uint32_t>(model_.texts.size()),
                     static_cast<std::uint32_t>(text.size())};
    if (model_.texts.size() + text.size() > kMostNameBytes)
        json_.Fail("expected names of at most " + std::to_string(kMostNameBytes) +
                       " bytes together, with this it is " +
                       std::to_string(model_.texts.size() + text.size()),
                   LoadFailure::kLimit);
    model_.texts += text;
    return added;
}

Text DocumentReader::ReadName(JsonValue& value) {
    return AddText(json_.String(value));
}

std::uint32_t DocumentReader::ReadExtras(JsonValue& value) {
    model_.extras.push_back(json_.Any(value));
    return static_cast<std::uint32_t>(model_.extras.size() - 1);
}

void DocumentReader::ReadTexts(JsonValue& value, std::vector<std::string>& out) {
    json_.Elements(value, [&](std::uint64_t, JsonValue& text) { out.emplace_back(json_.String(text)); });
}

std::uint32_t DocumentReader::ReadNumbers(JsonValue& value, std::uint32_t count) {
    std::vector<double>& numbers = model_.numbers;
    const std::size_t first = numbers.size();
    json_.Elements(value, [&](std::uint64_t, JsonValue& number) {
        if (numbers.size() - first < count) {
            numbers.push_back(json_.Number(number));
        } else {
            json_.place.Leave();
            json_.Fail("expected " + std::to_string(count) + " numbers, found more");
        }
    });
    if (numbers.size() - first < count)
        json_.Fail("expected " + std::to_string(count) + " numbers, found " +
                   std::to_string(numbers.size() - first));
    return static_cast<std::uint32_t>(first);
}

void DocumentReader::ReadIndices(JsonValue& value, std::vector<std::uint32_t>& out, std::uint64_t most) {
    json_.Elements(value, [&](std::uint64_t, JsonValue& index) {
        if (out.size() >= most) FailTooMany(most);
        out.push_back(json_.Index(index));
    });
}

/// Files of version 2; a later minor version says in `minVersion` what it needs.
void DocumentReader::ReadAsset(JsonValue& value) {
    RefuseSecond(!hasAsset_);
    model_.asset = json_.Any(value);
    hasAsset_ = true;
    const auto textOf = [&](const wchar_t* key) {
        const Var* text = model_.asset.IsMap() ? model_.asset.Lookup(key) : nullptr;
        return text && text->IsText() ? text->ToText().ToUtf8() : std::string();
    };
    const std::string version = textOf(L"version"), least = textOf(L"minVersion");
    if (version.empty()) json_.Fail("expected a version, found none");
    if (version.substr(0, 2) != "2.") json_.Fail("version 2.0 is read, this is version " + version);
    if (!least.empty() && least != "2.0") json_.Fail("needs a reader of version " + least + ", this is 2.0");
}

}  // namespace qn::gltf

#include "importers/gltf/document_reader.h"
#include "importers/gltf/gltf_limits.h"

#include <array>

namespace qn::gltf {
namespace {

constexpr int kMostDigits = 9;

/// Passes over the letters of `wanted`; false at the first other one.
bool Skip(const char*& at, std::string_view wanted) {
    for (const char letter : wanted)
        if (*at++ != letter) return false;
    return true;
}

/// The digits at the place; kNone if there is none, or more than any index has.
std::uint32_t Digits(const char*& at) {
    std::uint32_t number = 0;
    int count = 0;
    for (; *at >= '0' && *at <= '9' && count < kMostDigits; ++at, ++count)
        number = number * 10 + static_cast<std::uint32_t>(*at - '0');
    return count > 0 ? number : kNone;
}

/// Every node of a file of our own says of which use it is: a number, not two maps for each. kNone if the
/// extras say anything else, or say it otherwise. Never looks further than the padding behind the text.
std::uint32_t UseInExtras(std::string_view token) {
    constexpr std::string_view kBegin = R"({"assembly":{"definition":)", kMiddle = R"(,"use":)", kEnd = "}}";
    static_assert(kBegin.size() + kMiddle.size() + kEnd.size() + 2 * kMostDigits < DocumentReader::kPadding);
    const char* at = token.data();
    if (!Skip(at, kBegin) || Digits(at) == kNone || !Skip(at, kMiddle)) return kNone;
    const std::uint32_t use = Digits(at);
    return use != kNone && Skip(at, kEnd) ? use : kNone;
}

}  // namespace

/// A node while its members come in, in any order.
struct DocumentReader::NodeDraft {
    Node node;
    std::uint32_t matrix = kNone;  // first numbers of the parts
    std::uint32_t translation = kNone;
    std::uint32_t rotation = kNone;
    std::uint32_t scale = kNone;
};

void DocumentReader::ReadPlace(std::uint32_t& part, JsonValue& value, std::uint32_t count) {
    RefuseSecond(part == kNone);
    part = ReadNumbers(value, count);
}

void DocumentReader::ReadChildren(Node& node, JsonValue& value) {
    RefuseSecond(node.childCount == 0);
    node.firstChild = static_cast<std::uint32_t>(model_.children.size());
    ReadIndices(value, model_.children, gltf_limits::kMostNodes);
    node.childCount = static_cast<std::uint32_t>(model_.children.size()) - node.firstChild;
}

void DocumentReader::ReadCopies(Node& node, JsonValue& value) {
    static constexpr Row<Copies> kAttributes[] = {
        {"TRANSLATION", [](auto& r, Copies& c, auto& v) { c.translation = r.json_.Index(v); }},
        {"ROTATION", [](auto& r, Copies& c, auto& v) { c.rotation = r.json_.Index(v); }},
        {"SCALE", [](auto& r, Copies& c, auto& v) { c.scale = r.json_.Index(v); }},
    };
    static constexpr Row<Copies> kRows[] = {
        {"attributes", [](auto& r, Copies& c, auto& v) { r.ReadObject(v, c, kAttributes); }},
    };
    RefuseSecond(node.copies == kNone);
    node.copies = static_cast<std::uint32_t>(model_.copies.size());
    ReadObject(value, model_.copies.emplace_back(), kRows);
}

void DocumentReader::ReadNodes(JsonValue& value) {
    static constexpr Row<NodeDraft> kExtensions[] = {
        {"EXT_mesh_gpu_instancing", [](auto& r, NodeDraft& n, auto& v) { r.ReadCopies(n.node, v); }},
    };
    static constexpr Row<NodeDraft> kRows[] = {
        {"mesh", [](auto& r, NodeDraft& n, auto& v) { n.node.mesh = r.json_.Index(v); }},
        {"name", [](auto& r, NodeDraft& n, auto& v) { n.node.name = r.ReadName(v); }},
        {"translation", [](auto& r, NodeDraft& n, auto& v) { r.ReadPlace(n.translation, v, 3); }},
        {"rotation", [](auto& r, NodeDraft& n, auto& v) { r.ReadPlace(n.rotation, v, 4); }},
        {"scale", [](auto& r, NodeDraft& n, auto& v) { r.ReadPlace(n.scale, v, 3); }},
        {"matrix", [](auto& r, NodeDraft& n, auto& v) { r.ReadPlace(n.matrix, v, 16); }},
        {"children", [](auto& r, NodeDraft& n, auto& v) { r.ReadChildren(n.node, v); }},
        {"camera", [](auto& r, NodeDraft& n, auto& v) { n.node.camera = r.json_.Index(v); }},
        {"extras",
         [](auto& r, NodeDraft& n, auto& v) {
             n.node.use = UseInExtras(v.raw_json_token());
             if (n.node.use == kNone) n.node.extras = r.ReadExtras(v);
         }},
        {"extensions", [](auto& r, NodeDraft& n, auto& v) { r.ReadObject(v, n, kExtensions); }},
    };
    RefuseSecond(model_.nodes.empty());
    json_.Elements(value, [&](std::uint64_t index, JsonValue& element) {
        if (index >= gltf_limits::kMostNodes) FailTooMany(gltf_limits::kMostNodes);
        NodeDraft draft;
        ReadObject(element, draft, kRows);
        FinishNode(draft);
    });
}

/// Brings the parts of the place together. A lone translation, the usual case, stays where it was read.
void DocumentReader::FinishNode(NodeDraft& draft) {
    Node& node = draft.node;
    std::vector<double>& numbers = model_.numbers;
    const bool hasOthers = draft.rotation != kNone || draft.scale != kNone;
    if (draft.matrix != kNone) {
        if (hasOthers || draft.translation != kNone)
            json_.Fail("expected either a matrix or translation, rotation and scale, found both");
        node.placeKind = PlaceKind::kMatrix;
        node.place = draft.matrix;
    } else if (hasOthers) {
        std::array<double, 10> parts{0, 0, 0, 0, 0, 0, 1, 1, 1, 1};
        const auto copy = [&](std::uint32_t from, std::size_t to, std::size_t count) {
            for (std::size_t i = 0; from != kNone && i < count; ++i)
                parts[to + i] = numbers[from + i];
        };
        copy(draft.translation, 0, 3);
        copy(draft.rotation, 3, 4);
        copy(draft.scale, 7, 3);
        // They were the last numbers that were read, and go where the first of them stood.
        numbers.resize(std::min({draft.translation, draft.rotation, draft.scale}));
        node.placeKind = draft.scale == kNone ? PlaceKind::kMotion : PlaceKind::kParts;
        node.place = static_cast<std::uint32_t>(numbers.size());
        numbers.insert(numbers.end(), parts.begin(), parts.end() - (draft.scale == kNone ? 3 : 0));
    } else if (draft.translation != kNone) {
        node.placeKind = PlaceKind::kTranslation;
        node.place = draft.translation;
    }
    model_.nodes.push_back(node);
}

void DocumentReader::ReadScenes(JsonValue& value) {
    static constexpr Row<SceneList> kRows[] = {
        {"name", [](auto& r, SceneList& s, auto& v) { s.name = r.ReadName(v); }},
        {"nodes",
         [](auto& r, SceneList& s, auto& v) {
             r.RefuseSecond(s.nodes.empty());
             r.ReadIndices(v, s.nodes, gltf_limits::kMostNodes);
         }},
        {"extras", [](auto& r, SceneList& s, auto& v) { s.extras = r.ReadExtras(v); }},
    };
    ReadList(value, model_.scenes, kRows, gltf_limits::kMostOthers);
}

void DocumentReader::ReadCameras(JsonValue& value) {
    static constexpr Row<Camera> kPerspective[] = {
        {"yfov", [](auto& r, Camera& c, auto& v) { c.yFov = r.json_.Number(v); }},
        {"aspectRatio", [](auto& r, Camera& c, auto& v) { c.aspect = r.json_.Number(v); }},
        {"znear", [](auto& r, Camera& c, auto& v) { c.zNear = r.json_.Number(v); }},
        {"zfar", [](auto& r, Camera& c, auto& v) { c.zFar = r.json_.Number(v); }},
    };
    static constexpr Row<Camera> kOrthographic[] = {
        {"xmag", [](auto& r, Camera& c, auto& v) { c.xMag = r.json_.Number(v); }},
        {"ymag", [](auto& r, Camera& c, auto& v) { c.yMag = r.json_.Number(v); }},
        {"znear", [](auto& r, Camera& c, auto& v) { c.zNear = r.json_.Number(v); }},
        {"zfar", [](auto& r, Camera& c, auto& v) { c.zFar = r.json_.Number(v); }},
    };
    static constexpr Row<Camera> kRows[] = {
        {"name", [](auto& r, Camera& c, auto& v) { c.name = r.ReadName(v); }},
        {"type",
         [](auto& r, Camera& c, auto& v) {
             const std::string_view type = r.json_.String(v);
             if (type != "perspective" && type != "orthographic")
                 r.json_.Fail("expected \"perspective\" or \"orthographic\", found \"" + std::string(type) +
                              "\"");
             c.isPerspective = type == "perspective";
         }},
        {"perspective", [](auto& r, Camera& c, auto& v) { r.ReadObject(v, c, kPerspective); }},
        {"orthographic", [](auto& r, Camera& c, auto& v) { r.ReadObject(v, c, kOrthographic); }},
        {"extras", [](auto& r, Camera& c, auto& v) { c.extras = r.ReadExtras(v); }},
    };
    ReadList(value, model_.cameras, kRows, gltf_limits::kMostOthers);
}

}  // namespace qn::gltf

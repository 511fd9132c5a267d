#pragma once

#include "frame/host/var.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// What the text of a glTF file says, flat: one array for each kind, links by index, no object for a node.

namespace qn::gltf {

/// "Not given", of every index.
inline constexpr std::uint32_t kNone = 0xffffffff;

/// A piece of `Model::texts`; UTF-8. Empty where the file says nothing.
struct Text {
    std::uint32_t offset = 0;
    std::uint32_t length = 0;
};

/// How a node stands in its parent, lengths in the file's unit.
enum class PlaceKind : std::uint8_t {
    kIdentity,
    kTranslation,  ///< 3 numbers
    kMotion,       ///< 7: translation, rotation (x, y, z, w)
    kParts,        ///< 10: translation, rotation, scale
    kMatrix,       ///< 16, column after column, which is row after row where points are rows
};

struct Node {
    Text name;
    std::uint32_t mesh = kNone;
    std::uint32_t camera = kNone;
    std::uint32_t firstChild = 0;  ///< in `Model::children`
    std::uint32_t childCount = 0;
    std::uint32_t place = 0;       ///< first number in `Model::numbers`
    std::uint32_t extras = kNone;  ///< in `Model::extras`
    std::uint32_t copies = kNone;  ///< in `Model::copies`
    std::uint32_t use = kNone;     ///< in the tables of a file of our own, if its extras say just that
    PlaceKind placeKind = PlaceKind::kIdentity;
    bool isChild = false;  ///< of another node
};

/// Accessors of EXT_mesh_gpu_instancing, one row for each copy.
struct Copies {
    std::uint32_t translation = kNone;
    std::uint32_t rotation = kNone;
    std::uint32_t scale = kNone;
    std::uint32_t count = 0;
};

/// One draw call of a mesh.
struct Primitive {
    std::uint32_t positions = kNone;  ///< accessor
    std::uint32_t normals = kNone;
    std::uint32_t indices = kNone;
    std::uint32_t material = kNone;
    int mode = 4;  ///< 4 triangles, 5 strip, 6 fan; others are points and lines
    std::uint32_t dracoView = kNone;
    std::uint32_t dracoPositions = kNone;  ///< attribute id within the compressed data
    std::uint32_t dracoNormals = kNone;
};

struct Mesh {
    Text name;
    std::uint32_t firstPrimitive = 0;  ///< in `Model::primitives`
    std::uint32_t primitiveCount = 0;
    std::uint32_t extras = kNone;
};

struct Material {
    Text name;
    std::array<float, 4> colour{1, 1, 1, 1};  ///< linear red, green, blue, alpha
    bool isBlended = false;                   ///< else alpha means nothing
    std::uint32_t extras = kNone;
};

struct Camera {
    Text name;
    bool isPerspective = true;
    double yFov = 0;    ///< radians
    double aspect = 0;  ///< 0: that of the window
    double xMag = 0, yMag = 0;
    double zNear = 0;
    double zFar = 0;  ///< 0: none
    std::uint32_t extras = kNone;
};

struct Buffer {
    std::string uri;  ///< as written; empty: the binary part of the file
    bool hasUri = false;
    std::uint64_t length = 0;
    bool isFallback = false;  ///< EXT_meshopt_compression: need not be there
};

struct BufferView {
    std::uint32_t buffer = kNone;
    std::uint64_t offset = 0;
    std::uint64_t length = 0;
    std::uint32_t stride = 0;  ///< 0: elements stand close together
    // EXT_meshopt_compression: where the packed bytes are, and what they unpack to
    std::uint32_t packedBuffer = kNone;
    std::uint64_t packedOffset = 0;
    std::uint64_t packedLength = 0;
    std::uint32_t packedStride = 0;
    std::uint32_t packedCount = 0;
    std::string packedMode;    ///< ATTRIBUTES, TRIANGLES or INDICES
    std::string packedFilter;  ///< NONE, OCTAHEDRAL, QUATERNION or EXPONENTIAL
};

struct Sparse {
    std::uint32_t count = 0;  ///< 0: the accessor is not sparse
    std::uint32_t indexView = kNone;
    std::uint64_t indexOffset = 0;
    int indexType = 0;
    std::uint32_t valueView = kNone;
    std::uint64_t valueOffset = 0;
};

struct Accessor {
    std::uint32_t view = kNone;
    std::uint64_t offset = 0;
    int componentType = 0;         ///< 5120 to 5126
    std::uint32_t components = 0;  ///< 1 for SCALAR to 16 for MAT4
    std::uint32_t count = 0;
    bool normalized = false;
    Sparse sparse;
};

struct SceneList {
    Text name;
    std::vector<std::uint32_t> nodes;
    std::uint32_t extras = kNone;
};

struct Model {
    std::string texts;
    std::vector<Node> nodes;
    std::vector<std::uint32_t> children;
    std::vector<double> numbers;
    std::vector<Copies> copies;
    std::vector<Mesh> meshes;
    std::vector<Primitive> primitives;
    std::vector<Material> materials;
    std::vector<Camera> cameras;
    std::vector<SceneList> scenes;
    std::uint32_t scene = kNone;  ///< the one to show first
    std::vector<Buffer> buffers;
    std::vector<BufferView> views;
    std::vector<Accessor> accessors;
    std::vector<Var> extras;
    Var documentExtras;
    Var asset;  ///< a map, as the file has it
    std::vector<std::string> extensionsUsed;
    std::vector<std::string> extensionsRequired;
    std::vector<std::uint32_t> roots;  ///< nodes that are no children: those of scenes first, each once

    std::string_view TextOf(Text text) const {
        return std::string_view(texts).substr(text.offset, text.length);
    }
    /// Empty for kNone.
    Var ExtrasAt(std::uint32_t index) const { return index == kNone ? Var() : extras[index]; }
};

}  // namespace qn::gltf

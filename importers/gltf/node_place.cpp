#include "importers/gltf/node_place.h"

#include "importers/gltf/gltf_error.h"

#include <cmath>

namespace qn::gltf {
namespace {

bool IsFinite(const Matrix4<double>& matrix) {
    double sum = 0;
    for (const auto& row : matrix.m)
        for (const double value : row)
            sum += value * 0;  // not a number as soon as one is not finite
    return sum == 0;
}

void ScaleTranslation(Matrix4<double>& matrix, double scale) {
    for (int axis = 0; axis < 3; ++axis)
        matrix.m[3][axis] *= scale;
}

void CheckAffine(const Matrix4<double>& matrix, std::uint32_t node) {
    if (matrix.m[0][3] == 0 && matrix.m[1][3] == 0 && matrix.m[2][3] == 0 && matrix.m[3][3] == 1) return;
    FailAt(PointerTo("nodes", node) + "/matrix", "expected 0, 0, 0, 1 as numbers 3, 7, 11 and 15");
}

}  // namespace

Matrix4<double> PlaceFromParts(const double* translation, const double* rotation, const double* stretch,
                               double scale, const std::string& pointer) {
    Matrix4<double> matrix;
    if (rotation) {
        double x = rotation[0], y = rotation[1], z = rotation[2], w = rotation[3];
        const double length = std::sqrt(x * x + y * y + z * z + w * w);
        if (!(length > 0) || !std::isfinite(length))
            FailAt(pointer + "/rotation", "expected a quaternion of length 1");
        x /= length, y /= length, z /= length, w /= length;
        const double rows[3][3] = {
            {1 - 2 * (y * y + z * z), 2 * (x * y + z * w), 2 * (x * z - y * w)},
            {2 * (x * y - z * w), 1 - 2 * (x * x + z * z), 2 * (y * z + x * w)},
            {2 * (x * z + y * w), 2 * (y * z - x * w), 1 - 2 * (x * x + y * y)},
        };
        for (int r = 0; r < 3; ++r)
            for (int c = 0; c < 3; ++c)
                matrix.m[r][c] = rows[r][c];
    }
    for (int r = 0; stretch && r < 3; ++r)
        for (int c = 0; c < 3; ++c)
            matrix.m[r][c] *= stretch[r];
    for (int axis = 0; translation && axis < 3; ++axis)
        matrix.m[3][axis] = translation[axis] * scale;
    if (!IsFinite(matrix)) FailAt(pointer, "the place holds numbers that are too large");
    return matrix;
}

bool PlaceOf(const Model& model, std::uint32_t index, double scale, Matrix4<double>& out) {
    const Node& node = model.nodes[index];
    const double* numbers = model.numbers.data() + node.place;
    switch (node.placeKind) {
        case PlaceKind::kIdentity:
            return false;
        case PlaceKind::kTranslation:
            out = Matrix4<double>::Translation(numbers[0] * scale, numbers[1] * scale, numbers[2] * scale);
            break;
        case PlaceKind::kMotion:
            out = PlaceFromParts(numbers, numbers + 3, nullptr, scale, PointerTo("nodes", index));
            break;
        case PlaceKind::kParts:
            out = PlaceFromParts(numbers, numbers + 3, numbers + 7, scale, PointerTo("nodes", index));
            break;
        case PlaceKind::kMatrix:
            for (int i = 0; i < 16; ++i)
                out.m[i / 4][i % 4] = numbers[i];
            CheckAffine(out, index);
            ScaleTranslation(out, scale);
            break;
    }
    if (!IsFinite(out)) FailAt(PointerTo("nodes", index), "the place holds numbers that are too large");
    return out != Matrix4<double>();
}

}  // namespace qn::gltf

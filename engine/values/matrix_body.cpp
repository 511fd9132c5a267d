#include "engine/values/var_access.h"

#include <cstring>
#include <new>

namespace qn {
namespace {

constexpr std::size_t kAll = 16, kOfMove = 3;

Matrix4<double> MoveBy(const double* numbers) noexcept {
    return Matrix4<double>::Translation(numbers[0], numbers[1], numbers[2]);
}

}  // namespace

/// Bits are compared, not numbers: a zero keeps its sign.
MatrixBody* MatrixBody::Make(const Matrix4<double>& matrix) {
    const Matrix4<double> move = MoveBy(matrix.m[3]);
    const bool isMove = std::memcmp(&move, &matrix, sizeof(matrix)) == 0;
    const std::size_t count = isMove ? kOfMove : kAll;
    auto* body = new (::operator new(sizeof(MatrixBody) + count * sizeof(double))) MatrixBody{1, isMove};
    std::memcpy(body->Numbers(), isMove ? matrix.m[3] : matrix.m[0], count * sizeof(double));
    return body;
}

Matrix4<double> MatrixBody::Get() const noexcept {
    if (isMove) return MoveBy(Numbers());
    Matrix4<double> matrix;
    std::memcpy(matrix.m, Numbers(), sizeof(matrix.m));
    return matrix;
}

void MatrixBody::Destroy() noexcept {
    ::operator delete(this);
}

}  // namespace qn

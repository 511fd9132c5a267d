#pragma once

#include "engine/values/vector3.h"
#include "engine/view/raster.h"

namespace qn::view {

using Vector = Vector3;

/// Three directions at right angles, each of length 1.
struct Axes {
    Vector right, up, toward;
};

/// From the front, the right and above, with z upwards.
Axes IsometricAxes();
/// Those of a camera that looks along its own -z with y upwards; isometric if the matrix has no directions.
Axes AxesOf(const Matrix4<double>& camera);

/// The extent of something, empty at first.
class Box {
public:
    void Add(const Vector& point);
    bool IsEmpty() const { return empty_; }
    const Vector& Low() const { return low_; }
    const Vector& High() const { return high_; }
    /// Corner 0 to 7.
    Vector Corner(int number) const;

private:
    Vector low_{}, high_{};
    bool empty_ = true;
};

/// Of length 1; the zero vector stays.
Vector Normalised(const Vector& vector);

/// Looks at an extent from a direction, without perspective, so that all of it fills the picture.
class Camera {
public:
    /// `extent` is measured along the axes: x right, y up, z toward.
    Camera(const Axes& axes, const Box& extent, int pixels);

    ScreenPoint Project(const Vector& point) const;
    /// Pixels for one unit of length.
    double Scale() const { return scale_; }
    const Axes& Directions() const { return axes_; }

private:
    Axes axes_;
    Vector middle_{};
    double scale_ = 1;
    double half_;
};

/// A point along the axes.
Vector AlongAxes(const Vector& point, const Axes& axes);

}  // namespace qn::view

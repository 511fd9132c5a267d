#pragma once

#include "engine/values/vector3.h"

namespace qn::exchange {

/// A box along the axes, millimetres; empty until a point was added.
struct Box {
    Vector3 min{};
    Vector3 max{};
    bool isEmpty = true;

    void AddPoint(const Vector3& point);
    void AddBox(const Box& other);
    bool IsFinite() const;
    /// Whether the boxes are at most `margin` apart along every axis; an empty box meets nothing.
    bool Meets(const Box& other, double margin) const;
    /// The box around this one's corners after the map.
    Box Mapped(const Matrix4<double>& matrix) const;
};

}  // namespace qn::exchange

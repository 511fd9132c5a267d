#pragma once

#include <string>
#include <vector>

/// Writes the text of a small STEP file, entity by entity. Each call gives the number of what it wrote.
class StepText {
public:
    using Id = unsigned;

    /// What a definition needs to be used and to use others.
    struct Part {
        Id definition;
        Id shape;  ///< its shape representation, holds `origin`
    };

    /// `metresPerUnit` is that of every shape that is made afterwards; only powers of ten and 0.0254.
    explicit StepText(const std::string& metresPerUnit = "0.001");

    Id Add(const std::string& record);
    /// The number that the next record gets.
    Id Next() const { return last_ + 1; }
    Part Definition(const std::string& name, const std::string& items = "");
    Id Axes(double x, double y, double z, double directionX = 1, double directionY = 0);
    /// A use placed at the axes by item-defined transformation. Gives the occurrence.
    Id Use(const std::string& id, const Part& parent, const Part& child, Id axes);
    /// A use without any placement.
    Id PlainUse(const std::string& id, const Part& parent, const Part& child);
    /// The relationship of a placement: representations and transformation, then what it places.
    void Place(Id occurrence, Id first, Id second, Id transformation);
    Id Transformation(Id fromItem, Id toItem);

    Id Origin() const { return origin_; }
    Id Context() const { return context_; }
    void SetUnit(const std::string& metresPerUnit);
    /// The whole file.
    std::string Text() const;

private:
    std::string body_;
    Id last_ = 0;
    Id productContext_ = 0;
    Id definitionContext_ = 0;
    Id context_ = 0;
    Id origin_ = 0;
};

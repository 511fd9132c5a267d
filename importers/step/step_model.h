#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qn::step {

/// Affine 4x4 matrix, row-major: points are rows, the translation stands in the last row.
using Transform = std::array<double, 16>;
inline constexpr Transform kIdentity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

/// Each component from 0 to 1; alpha 1 is opaque.
struct Colour {
    float red = 0;
    float green = 0;
    float blue = 0;
    float alpha = 1;

    friend bool operator==(const Colour&, const Colour&) = default;
};

/// One value of a property: a text, or one or more numbers in `unit`.
struct PropertyValue {
    std::string name;  ///< of the item, such as "volume measure"
    std::string text;
    std::vector<double> numbers;  ///< three for a point
    std::string unit;             ///< as the file names it, such as "mm^3"; empty if it has none
};

/// What a file states about a definition or a use besides its structure and shape: validation
/// properties, user-defined attributes, material.
struct Property {
    std::string group;        ///< "geometric validation property", "material property", ...
    std::string name;         ///< of the general property, else of the representation; may be empty
    std::string description;  ///< may be empty
    std::string aspect;       ///< the part of the shape that it holds for; empty for all of it
    std::vector<PropertyValue> values;
};

/// One shape representation that belongs to a definition, and how it stands in it.
struct ShapePiece {
    std::uint64_t representation = 0;    ///< entity number
    std::vector<std::uint64_t> items;    ///< entity numbers of its geometry, placements left out
    Transform toDefinition = kIdentity;  ///< millimetres
};

/// A product definition: an assembly if something is used in it, else a part.
struct Definition {
    std::uint64_t entity = 0;  ///< number of the product definition in the file
    std::string productId;
    std::string name;  ///< of the product, else its id; need not be unique
    std::string description;
    std::string definitionId;
    std::string definitionDescription;
    std::string versionId;                   ///< of the formation
    std::vector<std::string> externalFiles;  ///< named by document references, not opened
    std::vector<Property> properties;
    std::vector<Colour> colours;     ///< of whole shapes, each once, in the order of the file
    std::vector<ShapePiece> shapes;  ///< own geometry; empty if it has none
    std::vector<std::size_t> uses;   ///< of other definitions in this one, in the order of the file

    /// The file that holds what this definition only announces, with forward slashes; empty if there is none,
    /// or if the definition has uses or geometry of its own: its documents describe it then.
    std::string ContentFile() const;

    bool IsAssembly() const { return !uses.empty(); }
    bool HasOwnGeometry() const { return !shapes.empty(); }
};

/// One use of a definition in another (next assembly usage occurrence).
struct Use {
    std::uint64_t entity = 0;
    std::size_t parent = 0;  ///< index into `definitions`
    std::size_t child = 0;   ///< index into `definitions`
    std::string id;
    std::string name;  ///< as stated, else the id
    std::string description;
    std::string referenceDesignator;
    bool isPlaced = false;           ///< false if the file states no placement; then the identity
    Transform toParent = kIdentity;  ///< millimetres
    std::vector<Property> properties;
};

/// The product structure of one file. Texts are UTF-8.
struct StepModel {
    std::vector<Definition> definitions;  ///< in the order of the file
    std::vector<Use> uses;                ///< in the order of the file
    std::vector<std::size_t> roots;       ///< definitions that no use names, in the order of the file
    std::vector<std::string> schemas;
    double sourceUnit = 0.001;  ///< metres; of the first root's shape, or of the first unit met
    std::vector<std::string> warnings;
};

}  // namespace qn::step

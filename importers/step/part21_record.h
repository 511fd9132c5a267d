#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qn::step {

/// Number of an entity in its file: the 12 of "#12". 0 means "none".
using EntityId = std::uint64_t;
inline constexpr EntityId kNoEntity = 0;

enum class ParamKind : std::uint8_t {
    kUnset,      ///< $
    kDerived,    ///< *
    kInteger,    ///< value in `number`
    kReal,       ///< value in `number`
    kText,       ///< inside of the quotes, still escaped, in `text`
    kEnum,       ///< name without the dots in `text`
    kBinary,     ///< hex digits in `text`
    kReference,  ///< entity in `id`
    kList,       ///< members in `items`
    kTyped       ///< type keyword in `text`, its one parameter in `items`
};

/// One parameter of a record. Texts are borrowed from the file's text.
struct Param {
    ParamKind kind = ParamKind::kUnset;
    double number = 0;
    EntityId id = kNoEntity;
    std::string_view text;
    std::vector<Param> items;
};

using Params = std::vector<Param>;

/// KEYWORD(parameters): a whole simple record, or one part of a complex one.
struct RecordPart {
    std::string_view keyword;
    Params params;
};

/// The right side of "#12=...;". A simple record has one part, a complex one several,
/// an entity that the file does not have none.
struct Record {
    EntityId id = kNoEntity;
    std::vector<RecordPart> parts;

    bool Exists() const { return !parts.empty(); }
    bool Is(std::string_view keyword) const { return Find(keyword) != nullptr; }

    /// Parameters of the part with this keyword, or null.
    const Params* Find(std::string_view keyword) const;

    /// Attributes in their order of inheritance: a simple record's parameters, or those of the
    /// named parts of a complex record one after the other. Parts that are missing add nothing.
    Params Attributes(std::initializer_list<std::string_view> partsOfComplex) const&;
    Params Attributes(std::initializer_list<std::string_view> partsOfComplex) &&;
};

/// Reads the record that begins at `text[at]`, which may be simple or complex.
/// Throws ReadFailure if it is malformed or nested deeper than `step_limits::kDeepestParentheses`.
Record ParseRecord(std::string_view text, std::size_t at);

/// Lenient access: what is missing or of another kind reads as nothing.
EntityId ReferenceAt(const Params& params, std::size_t index);
std::string TextAt(const Params& params, std::size_t index);  ///< UTF-8
bool IsSet(const Params& params, std::size_t index);          ///< neither $ nor missing
const Params& ListAt(const Params& params, std::size_t index);
/// A number, also inside a typed parameter such as LENGTH_MEASURE(25.4).
double NumberAt(const Params& params, std::size_t index, double ifMissing);
std::string_view EnumAt(const Params& params, std::size_t index);

}  // namespace qn::step

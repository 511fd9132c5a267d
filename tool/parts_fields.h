#pragma once

#include "tool/parts_options.h"
#include "tool/structure.h"

#include <string>
#include <vector>

namespace assembly::tool {

/// A column of a parts list.
struct PartsField {
    enum class Kind {
        kLevel,
        kName,
        kId,
        kServerId,
        kQuantity,
        kTotal,
        kUnit,
        kDesignators,
        kFile,
        kMetadata
    };
    Kind kind = Kind::kName;
    std::string name;  ///< the title; of a metadata value its whole key
};

/// The built-in fields with what they hold, for the help text.
std::string DescribePartsFields();

/// The fields with these names. Case, "-" and blanks do not matter for built-in ones; a metadata value may be
/// named by the end of its key if that is the only such. Fails with kUsage, and a list of all fields, for any
/// other name.
std::vector<PartsField> ResolvePartsFields(const std::vector<std::string>& names, const Structure& structure);

/// The columns that a structure has if none are asked for.
std::vector<std::string> DefaultPartsFields(PartsStructure structure);

}  // namespace assembly::tool

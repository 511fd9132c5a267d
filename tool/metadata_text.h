#pragma once

#include "frame/host/hierarchy_element.h"

#include <set>
#include <string>
#include <string_view>

namespace assembly::tool {

/// A metadata value as it is printed.
struct MetadataText {
    std::string text;  ///< UTF-8; empty if the value says nothing that can stand on one line
    bool isNumber = false;
};

/// Adds the keys of all values in the metadata of an element; those of nested maps are joined with "/". Each
/// map is met once, so that rings end.
void CollectMetadataKeys(const qn::graph::HierarchyElement& element, std::set<std::string>& keys);

/// The value under a key as `CollectMetadataKeys` gives it. Texts of an array are joined with ", "; a map of
/// a value and its unit reads "12.5 mm".
MetadataText ReadMetadata(const qn::graph::HierarchyElement& element, std::string_view key);

}  // namespace assembly::tool

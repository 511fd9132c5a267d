#pragma once

#include "exchange/tree_writer.h"
#include "frame/host/context.h"
#include "frame/host/scene_document.h"

namespace qn::exchange {

/// What the arguments of a shallow export mean, in their order.
struct ShallowArguments {
    String outputFile;        ///< 0: the file to write
    String spatialIndexFile;  ///< 1: the spatial index to write beside it; empty: none
    String title;             ///< 2: the document's name; empty: that of the structure
    Interface* structure;     ///< 3: a `Node` (a `Scene`, too) or a `Bom`
    Interface* header;        ///< 4: a map of further entries for the head of the document, or null
    String format;            ///< 5: "json" or "scene"; empty: by the ending of the output file
    String levels;            ///< 6: levels of the tree, from 1; empty: all
    String metadata;          ///< 7: "all" or "none"; empty: all
    String start;             ///< 8: server id of the occurrence to start from; empty: the top
};

enum class ShallowFormat { kJson, kScene };

/// The arguments, understood.
struct ShallowOptions {
    ShallowFormat format = ShallowFormat::kJson;
    TreeOptions tree;
    String title;
    std::vector<k3::Node*> tops;  ///< borrowed
};

/// False, with the cause in the context, if an argument cannot be used.
bool ReadShallowOptions(const ShallowArguments& arguments, ShallowOptions& options, Context& context);

}  // namespace qn::exchange

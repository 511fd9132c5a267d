#include "exchange/shallow_options.h"

#include "engine/scene/tree_walk.h"
#include "exchange/file_access.h"
#include "graph/node_content.h"
#include "product/bom.h"

#include <charconv>

namespace qn::exchange {
namespace {

bool Refuse(Context& context, const String& reason) {
    context.Fail(LoadFailure::kUnreadable, L"shallow export: " + reason);
    return false;
}

bool ReadFormat(const ShallowArguments& arguments, ShallowOptions& options, Context& context) {
    const bool isScene = arguments.format == String(L"scene") ||
                         (arguments.format.IsEmpty() && EndsWith(arguments.outputFile, ".qn"));
    if (!isScene && arguments.format.NonEmpty() && arguments.format != String(L"json"))
        return Refuse(context, L"\"" + arguments.format + L"\" is no format; json and scene are");
    options.format = isScene ? ShallowFormat::kScene : ShallowFormat::kJson;
    return true;
}

bool ReadLevels(const String& text, TreeOptions& tree, Context& context) {
    if (text.IsEmpty()) return true;
    const std::string digits = text.ToUtf8();
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), tree.levels);
    if (error == std::errc() && end == digits.data() + digits.size() && tree.levels > 0) return true;
    return Refuse(context, L"\"" + text + L"\" is no number of levels");
}

bool ReadMetadata(const String& text, TreeOptions& tree, Context& context) {
    tree.metadata = text != String(L"none");
    if (text.IsEmpty() || !tree.metadata || text == String(L"all")) return true;
    return Refuse(context, L"\"" + text + L"\" is not all or none");
}

void TakeChildren(const k3::Node& parent, std::vector<k3::Node*>& tops) {
    for (k3::Node* child = parent.GetFirstChild(); child; child = child->GetNextSibling())
        tops.push_back(child);
}

/// The current structure's nodes are the scene's children, those of the others stand below their roots.
void TakeBom(const k3::Bom& bom, ShallowOptions& options) {
    const VarArray* nodes = bom.GetNodes().ToArray();
    for (int i = 0; nodes && i < nodes->GetCount(); ++i)
        if (auto* node = Cast<k3::Node>(nodes->Get(i))) options.tops.push_back(node);
    if (options.title.IsEmpty()) options.title = bom.GetName();
}

bool TakeStructure(Interface* structure, ShallowOptions& options) {
    if (const auto* bom = Cast<k3::Bom>(structure)) {
        TakeBom(*bom, options);
        return true;
    }
    auto* node = Cast<k3::Node>(structure);
    if (!node) return false;
    if (node == node->GetScene())
        TakeChildren(*node, options.tops);
    else
        options.tops.push_back(node);
    if (options.title.IsEmpty()) options.title = node->GetName();
    return true;
}

bool HasId(const k3::Node& node, const String& id) {
    if (node.GetParamVar(Param::kBsId).ToText() == id) return true;
    const auto* instance = graph::CarriedInstance(node);
    return instance && instance->GetProperty(graph::Prop::kBsId, 0).ToText() == id;
}

/// The first node with the id, in tree order, takes the place of the tops.
bool FindStart(const String& id, std::vector<k3::Node*>& tops) {
    for (k3::Node* top : tops)
        for (k3::Node* node = top; node; node = k3::NextInSubtree(node, top))
            if (HasId(*node, id)) {
                tops = {node};
                return true;
            }
    return false;
}

}  // namespace

bool ReadShallowOptions(const ShallowArguments& arguments, ShallowOptions& options, Context& context) {
    options.title = arguments.title;
    options.tree.matrices = true;
    if (arguments.outputFile.IsEmpty()) return Refuse(context, L"no name for the output file");
    if (!ReadFormat(arguments, options, context) || !ReadLevels(arguments.levels, options.tree, context) ||
        !ReadMetadata(arguments.metadata, options.tree, context))
        return false;
    if (!TakeStructure(arguments.structure, options))
        return Refuse(context, L"the structure is no scene, no node and no bill of materials");
    if (arguments.start.IsEmpty() || FindStart(arguments.start, options.tops)) return true;
    return Refuse(context, L"no occurrence has the id \"" + arguments.start + L"\"");
}

}  // namespace qn::exchange

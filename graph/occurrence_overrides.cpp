#include "graph/occurrence_overrides.h"

#include "frame/host/collections.h"
#include "graph/instance_impl.h"
#include "graph/lookup_table.h"
#include "graph/node_content.h"
#include "graph/node_walk.h"

#include <optional>

namespace qn::graph {

namespace {

/// What `SelectorHasOwnAttributes` compares, in the order in which it is stored.
constexpr PropEnum kCompared[] = {Prop::kBlockA,      Prop::kBlockB, Prop::kInteger,   Prop::kExcluded,
                                  Prop::kLocalMatrix, Prop::kName,   Prop::kOwnMatrix, Prop::kShortValue,
                                  Prop::kThirdMatrix, Prop::kParam8a};

/// Collects the attributes of one occurrence.
class Overrides {
public:
    explicit Overrides(const Selector& path) : selector_(path) {}

    void Read(k3::Node& node, LookupTable* table) {
        if (node.GetFlags() & NodeFlag::kHidden) Set(Prop::kHidden, Var(true));
        const Var bsId = node.GetParamVar(Param::kBsId);
        if (bsId.IsSet()) Set(Prop::kBsId, bsId);
        bsId_ = bsId.ToText();
        if (VarMap* metadata = node.GetMetadata(false)) Set(Prop::kMetadata, Var(metadata, 1));
        const Var externalIds = node.GetParamVar(Param::kExternalIds);
        if (externalIds.IsMap()) Set(Prop::kExternalIds, externalIds);
        SelectorData data;
        if (SelectorHasOwnAttributes(&node, data, table, false)) SetCompared(data.attributes);
    }

    /// An occurrence that the filter leaves out is hidden, and stored although nothing else differs.
    void Store(InstanceImpl& last, LookupTable* table) {
        const bool isWanted = !table || table->IsElementAllowed(&last) || table->IsPathAllowed(bsId_);
        if (!isWanted) Set(Prop::kHidden, Var(true));
        if (changed_) last.AddLocalSelector(selector_);
    }

private:
    void Set(PropEnum id, const Var& value) {
        selector_.SetProperty(id, value);
        changed_ = true;
    }

    void SetCompared(const Var& attributes) {
        for (const PropEnum id : kCompared)
            if (const Var* value = attributes.Lookup(Key(id))) selector_.SetProperty(id, *value);
        changed_ = true;
    }

    Selector selector_;
    String bsId_;
    bool changed_ = false;
};

void CaptureOne(k3::Node& node, const Selector& path, LookupTable* table) {
    auto* last = Cast<InstanceImpl>(path.GetInstance());
    if (!last) return;
    Overrides overrides(path);
    overrides.Read(node, table);
    overrides.Store(*last, table);
}

}  // namespace

void CaptureOverrides(k3::Node& top, LookupTable* table) {
    WalkBelow(top, Selector(), [&](k3::Node& node, const Selector& above) -> std::optional<Selector> {
        Instance* const instance = CarriedInstance(node);
        if (!instance) return std::nullopt;
        Selector path = above;
        path.AppendPathElement(instance);
        CaptureOne(node, path, table);
        return path;
    });
}

}  // namespace qn::graph

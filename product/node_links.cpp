#include "product/node_links.h"

#include "frame/host/collections.h"
#include "frame/host/meta.h"
#include "frame/host/node.h"

#include <utility>
#include <vector>

namespace qn::k3 {
namespace {

constexpr const wchar_t* kLinkGroup = L"$QN.BOM.LINK";
constexpr const wchar_t* kLinks = L"Links";

bool HasLinks(const Var& group) {
    const Var* links = group.IsMap() ? group.Lookup(kLinks) : nullptr;
    return links && links->IsSet();
}

void LinkPair(Node& node, Node& counterpart) {
    Var group = GetMeta(&node, Var(kLinkGroup), 0);
    if (!HasLinks(group)) {
        const auto own = InterfaceArray::CreateWeak();
        own->Add(&node);
        group.At(kLinks) = Var(own);
    }
    auto links = Counted<InterfaceArray>(Cast<InterfaceArray>(group.At(kLinks).ToInterface()));
    if (!links) links = InterfaceArray::CreateWeak();
    links->Add(&counterpart);
    group.At(kLinks) = Var(links);
    for (int i = 0; i < links->GetCount(); ++i) {
        auto* member = Cast<Node>(links->Get(i));
        if (member && member->GetParent()) SetMeta(member, Var(kLinkGroup), group);
    }
}

}  // namespace

void LinkNodes(Node* first, Node* second) {
    std::vector<std::pair<Node*, Node*>> open{{first, second}};
    while (!open.empty()) {
        const auto [node, counterpart] = open.back();
        open.pop_back();
        if (!node || !counterpart) continue;
        LinkPair(*node, *counterpart);
        open.emplace_back(node->GetNextSibling(), counterpart->GetNextSibling());
        open.emplace_back(node->GetFirstChild(), counterpart->GetFirstChild());
    }
}

}  // namespace qn::k3

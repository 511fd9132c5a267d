#include "engine/scene/member_list.h"

#include "engine/scene/scene_access.h"

#include <algorithm>
#include <utility>

namespace qn::k3 {

PointerArray* MemberList::Array() {
    Compact();
    return array_.Get();
}

bool MemberList::Add(Node* node) {
    Compact();
    if (Find(node) >= 0) return false;
    array_->Add(node);
    indexed_ = array_->GetCount();
    places_[node] = indexed_ - 1;
    SceneAccess::SetGrouped(*node);
    return true;
}

void MemberList::AddStranger(Interface* object) {
    Compact();
    const bool isIndexed = indexed_ == array_->GetCount();
    array_->Add(object);
    if (isIndexed) ++indexed_;
}

bool MemberList::Remove(Node* node) {
    const int place = Find(node);
    if (place < 0) return false;
    array_->Set(place, nullptr);
    holes_.push_back(place);
    places_.erase(node);
    IndexTwin(node);
    return true;
}

void MemberList::Clear() {
    array_->Clear();
    places_.clear();
    twins_.clear();
    holes_.clear();
    indexed_ = 0;
}

// A dead member's address may be a new node's: only an entry that still reads as the node counts.
int MemberList::Find(Node* node) {
    if (indexed_ != array_->GetCount()) Index();
    const auto known = places_.find(node);
    if (known == places_.end()) return -1;
    return array_->Get(known->second) == node ? known->second : -1;
}

void MemberList::Index() {
    places_.clear();
    twins_.clear();
    indexed_ = array_->GetCount();
    for (int i = indexed_ - 1; i >= 0; --i) {
        const Interface* member = array_->Get(i);
        if (!member) continue;
        const auto [known, isFirst] = places_.emplace(member, i);
        if (!isFirst) twins_[member].push_back(std::exchange(known->second, i));
    }
}

/// The next entry of a node whose first one was removed takes its place in the index.
void MemberList::IndexTwin(Node* node) {
    const auto twins = twins_.find(node);
    if (twins == twins_.end()) return;
    places_[node] = twins->second.back();
    twins->second.pop_back();
    if (twins->second.empty()) twins_.erase(twins);
}

void MemberList::Compact() {
    if (holes_.empty()) return;
    std::sort(holes_.begin(), holes_.end());
    std::vector<Interface*> kept;
    std::size_t hole = 0;
    for (int i = 0; i < array_->GetCount(); ++i) {
        if (hole < holes_.size() && holes_[hole] == i)
            ++hole;
        else
            kept.push_back(array_->Get(i));
    }
    array_->Clear();
    for (Interface* member : kept)
        array_->Add(member);
    holes_.clear();
    indexed_ = -1;
}

}  // namespace qn::k3

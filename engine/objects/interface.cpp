#include "frame/host/interface.h"

#include "frame/host/guid.h"

#include <limits>
#include <vector>

namespace qn {
namespace {

constexpr int kNestedDestructions = 32;
// Far below zero, so that counts taken and dropped by destructors never reach zero again.
constexpr int kDyingCount = std::numeric_limits<int>::min() / 2;

/// What the outermost `DeleteThis` of this thread still has to destroy; trivially destroyed, so that objects
/// may die at any time of the process.
struct Destruction {
    int depth = 0;
    std::vector<Interface*>* postponed = nullptr;
};
thread_local Destruction t_destruction;

char LowerAscii(char letter) noexcept {
    return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

}  // namespace

WeakCell* WeakPtrBase::HoldCell(Interface* object) noexcept {
    WeakPtrBase& owner = *object;
    if (!owner.cell_ || !owner.cell_->object) {
        auto* cell = static_cast<WeakCell*>(mem::allocate(sizeof(WeakCell)));
        if (!cell) return nullptr;
        cell->object = object;
        cell->holders = 0;
        ThreadsafeIncrement(&cell->holders);
        owner.cell_ = cell;
    }
    ThreadsafeIncrement(&owner.cell_->holders);
    return owner.cell_;
}

void WeakPtrBase::DropCell(WeakCell* cell) noexcept {
    if (cell && ThreadsafeDecrement(&cell->holders) == 0) mem::free(cell);
}

void WeakPtrBase::ClearCell() noexcept {
    if (!cell_) return;
    WeakCell* cell = cell_;
    cell_ = nullptr;
    cell->object = nullptr;
    DropCell(cell);
}

int Interface::AddRef() noexcept {
    return ++count_;
}

int Interface::Release() noexcept {
    const int left = --count_;
    if (left == 0) DeleteThis();
    return left;
}

ResultEnum Interface::QueryInterface(const Guid&, Unknown*& out) {
    out = nullptr;
    return ResultEnum::kNothing;
}

ResultEnum Interface::QueryInterface(const char* name, Unknown*& out) {
    out = nullptr;
    if (!IsTypeOf(name)) return ResultEnum::kNothing;
    AddRef();
    out = this;
    return ResultEnum::kSuccess;
}

Interface::~Interface() {
    ClearCell();
}

void Interface::DeleteThis() noexcept {
    ClearCell();
    count_ = kDyingCount;
    Destruction& running = t_destruction;
    if (running.depth >= kNestedDestructions) {
        running.postponed->push_back(this);
        return;
    }
    if (running.depth > 0) {
        ++running.depth;
        delete this;
        --running.depth;
        return;
    }
    std::vector<Interface*> postponed;
    running = {1, &postponed};
    delete this;
    while (!postponed.empty()) {
        Interface* next = postponed.back();
        postponed.pop_back();
        delete next;
    }
    running = {};
}

int Interface::GetRefCount() const noexcept {
    return count_ > 0 ? count_ : 0;
}

const char* Interface::GetInterfaceName() const {
    return "";
}

bool Interface::IsTypeOf(const char*) const {
    return false;
}

ResultEnum Interface::CopyFrom(const Interface* source, unsigned flags) {
    return source ? CloneFrom(*source, flags) : ResultEnum::kWrongClass;
}

void* Interface::CastTo(const ClassRecord& wanted) {
    return &wanted == &StaticClass() ? this : nullptr;
}

const ClassRecord& Interface::StaticClass() {
    static const ClassRecord& record = InternClass("qn::Interface");
    return record;
}

ResultEnum Interface::CloneFrom(const Interface&, unsigned) {
    return ResultEnum::kSuccess;
}

bool EqualKeys(const char* left, const char* right) noexcept {
    if (!left || !right) return false;
    while (*left && LowerAscii(*left) == LowerAscii(*right))
        ++left, ++right;
    return LowerAscii(*left) == LowerAscii(*right);
}

}  // namespace qn

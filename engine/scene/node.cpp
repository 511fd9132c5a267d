#include "frame/host/node.h"

#include "engine/scene/node_rare.h"
#include "engine/scene/scene_access.h"

namespace qn::k3 {
namespace {

constexpr int kReportedNameLength = 512;

/// Null stands for the identity.
std::unique_ptr<Matrix4<double>> Compact(const Matrix4<double>* matrix) {
    if (!matrix || matrix->IsIdentity(0.0)) return nullptr;
    return std::make_unique<Matrix4<double>>(*matrix);
}

Matrix4<double> Expanded(const std::unique_ptr<Matrix4<double>>& matrix) {
    return matrix ? *matrix : Matrix4<double>();
}

}  // namespace

Node::Node() = default;

// Only the root of a dying tree still knows a scene, and a scene forgets its tree before it comes here.
Node::~Node() {
    while (Node* child = first_) {
        first_ = child->next_;
        child->parent_ = child->next_ = child->previous_ = nullptr;
        child->Release();
    }
}

Node::Rare& Node::Rarely() {
    if (!rare_) rare_ = std::make_unique<Rare>();
    return *rare_;
}

void Node::Changed() {
    changeStamp_ = SceneAccess::Epoch();
    if (scene_) SceneAccess::NoteChange(*scene_);
}

void Node::SetName(const wchar_t* name) {
    name_ = String(name ? name : L"");
    Changed();
}

void Node::SetDisplayName(const String& text) {
    if (rare_ || text.NonEmpty()) Rarely().displayName = text;
    Changed();
}

String Node::GetDisplayName() const {
    if (rare_ && rare_->displayName.NonEmpty()) return rare_->displayName;
    return name_.SubString(0, kReportedNameLength);
}

void Node::SetMatrix(const Matrix4<double>* matrix, int which) {
    auto compact = Compact(matrix);
    if (which == 0)
        matrix_ = std::move(compact);
    else if (rare_ || compact)
        Rarely().ownMatrix = std::move(compact);
    Changed();
}

void Node::GetMatrix(Matrix4<double>* out, int which) const {
    if (!out) return;
    if (which == 0)
        *out = Expanded(matrix_);
    else
        *out = rare_ ? Expanded(rare_->ownMatrix) : Matrix4<double>();
}

void Node::SetThirdMatrix(const Matrix4<double>& matrix) {
    auto compact = Compact(&matrix);
    if (rare_ || compact) Rarely().thirdMatrix = std::move(compact);
    Changed();
}

void Node::GetThirdMatrix(Matrix4<double>* out) const {
    if (out) *out = rare_ ? Expanded(rare_->thirdMatrix) : Matrix4<double>();
}

Matrix4<double> Node::GetWorldMatrix() const {
    Matrix4<double> world;
    for (const Node* node = this; node; node = node->parent_)
        if (node->matrix_) world.SetMul(world, *node->matrix_);
    return world;
}

void Node::SetObject(Object3D* object) {
    object_ = Counted<Object3D>(object);
    Changed();
}

void Node::SetFlags(unsigned flags) {
    flags_ = flags;
    Changed();
}

unsigned Node::GetAttributeWord(int index) const noexcept {
    if (index == 0) return flags_;
    return index == 1 ? word1_ : 0;
}

void Node::SetAttributeWord(int index, unsigned word) {
    if (index == 0)
        flags_ = word;
    else if (index == 1)
        word1_ = word;
    else
        return;
    Changed();
}

void Node::SetVisible(int visible) {
    SetFlags(visible ? flags_ & ~NodeFlag::kHidden : flags_ | NodeFlag::kHidden);
}

void Node::SetIntegerAttribute(int value, int) {
    if (rare_ || value != 0) Rarely().integerAttribute = value;
    Changed();
}

int Node::GetIntegerAttribute() const noexcept {
    return rare_ ? rare_->integerAttribute : 0;
}

void Node::SetShortValue(std::int16_t value) {
    shortValue_ = value;
    Changed();
}

void Node::SetOpacity(float opacity) {
    if (rare_ || opacity != 1.0f) Rarely().opacity = opacity;
    Changed();
}

float Node::GetOpacity() const noexcept {
    return rare_ ? rare_->opacity : 1.0f;
}

void Node::SetText(const String& text) {
    if (rare_ || text.NonEmpty()) Rarely().text = text;
    Changed();
}

String Node::GetText() const {
    return rare_ ? rare_->text : String();
}

Track* Node::GetTrack(int kind) const {
    if (!rare_) return nullptr;
    for (const auto& [known, track] : rare_->tracks)
        if (known == kind) return track.Get();
    return nullptr;
}

void Node::SetTrack(int kind, Track* track) {
    if (!rare_ && !track) return;
    auto& tracks = Rarely().tracks;
    std::erase_if(tracks, [kind](const auto& entry) { return entry.first == kind; });
    if (track) tracks.emplace_back(kind, Counted<Track>(track));
    Changed();
}

bool __AddToGlobalList(Node* node, ParamWord) {
    if (!node) return true;
    SceneAccess::BeforeListedChange(node->GetScene(), *node);
    SceneAccess::SetListed(*node, true);
    return true;
}

bool __RemoveFromGlobalList(Node* node, ParamWord argument) {
    if (!node) return true;
    SceneAccess::BeforeListedChange(reinterpret_cast<Scene*>(argument), *node);
    SceneAccess::SetListed(*node, false);
    return true;
}

}  // namespace qn::k3

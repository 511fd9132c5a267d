#include "frame/host/api.h"
#include "frame/host/params.h"
#include "frame/host/xml.h"
#include "graph/call_description.h"
#include "graph/lookup_table_impl.h"
#include "graph/post_processing_instruction_impl.h"
#include "graph/reference_impl.h"

#include <unordered_set>

namespace qn::graph {

namespace {

constexpr unsigned kWholeDescription = 0xff;
constexpr const char* kDocumentKey = "qnxmldocument";

/// Children first, each definition once, with a stack of its own.
class InstructionWalk {
public:
    InstructionWalk(Extension* target, Context* context, std::set<Reference*>& visited)
        : target_(target), context_(context), visited_(visited) {}

    void Run(ReferenceImpl& root) {
        Enter(root);
        while (!stack_.empty())
            Step();
    }

private:
    struct Frame {
        Counted<ReferenceImpl> reference;
        int next = 0;
    };

    void Enter(ReferenceImpl& reference) {
        descent_.insert(&reference);
        stack_.push_back({Counted<ReferenceImpl>(&reference)});
    }

    void Step() {
        Frame& frame = stack_.back();
        if (const Instance* child = frame.reference->PeekChild(frame.next++)) {
            auto* below = Cast<ReferenceImpl>(child->GetReference());
            if (below && visited_.count(below) == 0 && descent_.count(below) == 0) Enter(*below);
            return;
        }
        const Counted<ReferenceImpl> done = std::move(frame.reference);
        stack_.pop_back();
        descent_.erase(done.Get());
        visited_.insert(done.Get());
        done->RunInstructions(target_, context_);
    }

    Extension* target_;
    Context* context_;
    std::set<Reference*>& visited_;
    std::vector<Frame> stack_;
    std::unordered_set<ReferenceImpl*> descent_;
};

}  // namespace

int ReferenceImpl::GetInstructionCount() const {
    return instructions_ ? instructions_->GetCount() : 0;
}

Counted<Reference::PostProcessingInstruction> ReferenceImpl::GetInstruction(int index) const {
    if (!instructions_) return nullptr;
    return Counted<PostProcessingInstruction>(Cast<PostProcessingInstruction>(instructions_->Get(index)));
}

void ReferenceImpl::RemoveInstruction(int index) {
    if (instructions_) instructions_->RemoveAt(index, 1);
}

Counted<Reference::PostProcessingInstruction> ReferenceImpl::AddInstruction() {
    auto instruction = Make<PostProcessingInstructionImpl>();
    if (!instructions_) instructions_ = VarArray::Create();
    if (instruction && instructions_) instructions_->Add(Var(instruction));
    return instruction;
}

void ReferenceImpl::RunInstructions(Extension* target, Context* context) {
    if (!target || !context) return;
    const Counted<VarArray> instructions = instructions_;  // a call may replace them
    for (int i = 0; instructions && i < instructions->GetCount(); ++i) {
        const Var entry = instructions->Get(i);
        if (auto* instruction = Cast<PostProcessingInstruction>(entry))
            RunInstruction(*instruction, target, context);
    }
}

void ReferenceImpl::RunInstruction(PostProcessingInstruction& instruction, Extension* target,
                                   Context* context) const {
    const String key = instruction.GetCommandKey();
    const auto extension = CreateAs<Extension>(key.Utf8CStr());
    if (!extension) return;
    const auto document = CreateAs<xml::Element>(kDocumentKey);
    if (document) extension->QueryInfo(document.Get(), kWholeDescription);
    const auto parameters = Params::Create();
    if (!parameters) return;
    const auto table = table_.Lock();
    k3::Scene* scene = table ? table->scene.Get() : nullptr;
    FillArguments(*parameters, instruction.GetParams(true), document.Get(), instruction.GetMethodId(), scene);
    parameters->SetParamObject(Param::kCallTarget, target);
    extension->Invoke(instruction.GetMethodId(), parameters.Get(), context);
}

void ReferenceImpl::RunAllInstructions(Extension* target, Context* context) {
    if (!target || !context) return;
    std::set<Reference*> visited;
    RunInstructionsRecursive(target, context, visited);
}

void ReferenceImpl::RunInstructionsRecursive(Extension* target, Context* context,
                                             std::set<Reference*>& visited) {
    InstructionWalk(target, context, visited).Run(*this);
}

}  // namespace qn::graph

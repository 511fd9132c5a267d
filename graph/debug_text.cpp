#include "graph/debug_text.h"

#include "graph/instance_impl.h"
#include "graph/reference_impl.h"

#include <cstdint>
#include <unordered_set>

namespace qn::graph {

namespace {

class DebugWriter {
public:
    void Write(const InstanceImpl& instance) {
        Open(L"Instance", instance);
        EnterUsed(instance.GetReference());
        Finish();
    }

    void Write(const ReferenceImpl& reference) {
        Enter(reference, false);
        Finish();
    }

    String Text() const { return String(text_); }

private:
    struct Frame {
        const ReferenceImpl* reference;
        bool closesInstance;
        int next = 0;
    };

    template <class Element>
    void Open(const wchar_t* tag, const Element& element) {
        String head;
        head.Format(L"<%s name=\"%s\" ref=\"%d\">", tag, element.GetProperty(Prop::kName, 0).ToText().c_str(),
                    static_cast<int>(reinterpret_cast<std::intptr_t>(&element)));
        text_ += head.View();
    }

    void CloseInstance() { text_ += L"</Instance>"; }

    void Enter(const ReferenceImpl& reference, bool closesInstance) {
        Open(L"Reference", reference);
        descent_.insert(&reference);
        stack_.push_back({&reference, closesInstance});
    }

    /// What an open instance uses; closes the instance unless that has to wait for the definition's children.
    void EnterUsed(const Reference* used) {
        const auto* impl = Cast<ReferenceImpl>(used);
        if (impl && descent_.count(impl) == 0) return Enter(*impl, true);
        if (used && !impl) text_ += used->ToDebugString().View();
        CloseInstance();
    }

    void Finish() {
        while (!stack_.empty())
            Step();
    }

    void Step() {
        Frame& frame = stack_.back();
        const Instance* child = frame.reference->PeekChild(frame.next++);
        if (const auto* impl = Cast<InstanceImpl>(child)) {
            Open(L"Instance", *impl);
            EnterUsed(impl->GetReference());
        } else if (child) {
            text_ += child->ToDebugString().View();
        } else {
            text_ += L"</Reference>";
            if (frame.closesInstance) CloseInstance();
            descent_.erase(frame.reference);
            stack_.pop_back();
        }
    }

    std::wstring text_;
    std::vector<Frame> stack_;
    std::unordered_set<const ReferenceImpl*> descent_;
};

template <class Element>
String TextOf(const Element& element) {
    DebugWriter writer;
    writer.Write(element);
    return writer.Text();
}

}  // namespace

String DebugText(const InstanceImpl& instance) {
    return TextOf(instance);
}

String DebugText(const ReferenceImpl& reference) {
    return TextOf(reference);
}

String InstanceImpl::ToDebugString() const {
    return DebugText(*this);
}

String ReferenceImpl::ToDebugString() const {
    return DebugText(*this);
}

}  // namespace qn::graph

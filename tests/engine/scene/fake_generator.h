#pragma once

#include "frame/host/collections.h"
#include "frame/host/context.h"
#include "frame/host/generator.h"
#include "frame/host/node.h"
#include "frame/host/stream.h"

namespace qn::test {

/// Makes one child for each value of an array, named by it.
class FakeGenerator : public k3::Generator {
public:
    ResultEnum Generate(Extension* target, Context* context) override {
        auto* node = Cast<k3::Node>(target);
        if (!node) return ResultEnum::kWrongClass;
        if (refuses) return ResultEnum::kNothing;
        ++generated;
        while (k3::Node* child = node->GetFirstChild())
            node->_RemoveChild(child, true);
        for (int i = 0; i < names->GetCount(); ++i)
            node->CreateChildNode(0, 0, 0)->SetName(names->Get(i).ToText().c_str());
        if (failsWith != LoadFailure::kNone) context->Fail(failsWith, L"failed");
        return ResultEnum::kSuccess;
    }
    Interface* GetGeneratedRoot() const override { return hasRoot ? names.Get() : nullptr; }
    void OnAttach(ReferenceSource* owner) override { attachedTo = owner; }
    void OnDetach(ReferenceSource*) override { ++detached; }
    ResultEnum HandleChunk(int id, Stream* stream, Context* context) override {
        if (id != kRootChunk) return k3::Generator::HandleChunk(id, stream, context);
        if (const auto read = CountedCast<VarArray>(stream->ReadObject(context))) names = read;
        return ResultEnum::kSuccess;
    }
    const char* GetInterfaceName() const override { return "test.generator"; }
    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::test::FakeGenerator");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<FakeGenerator, k3::Generator>(this, wanted);
    }

    Counted<VarArray> names = VarArray::Create();
    bool hasRoot = true;
    bool refuses = false;
    LoadFailure failsWith = LoadFailure::kNone;
    int generated = 0;
    int detached = 0;
    ReferenceSource* attachedTo = nullptr;
};

/// A scene with one top node whose generator makes children of these names.
inline Counted<FakeGenerator> GiveGenerator(k3::Node& node, std::initializer_list<const wchar_t*> names) {
    auto generator = Make<FakeGenerator>();
    for (const wchar_t* name : names)
        generator->names->Add(Var(name));
    k3::Generator::Attach(&node, generator.Get());
    return generator;
}

}  // namespace qn::test

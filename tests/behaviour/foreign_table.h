#pragma once

#include "frame/host/guid.h"
#include "frame/host/var.h"
#include "graph/instance.h"
#include "graph/lookup_table.h"
#include "graph/persistent_selector.h"
#include "graph/reference.h"

namespace qn::test {

/// A table of another module: right class, wrong implementation. It passes everything on to a real one.
class ForeignTable final : public graph::LookupTable {
    using Element = graph::HierarchyElement;
    using Inst = Counted<graph::Instance>;
    using Ref = Counted<graph::Reference>;
    using Stored = Counted<graph::PersistentSelector>;
    using Nodes = Counted<InterfaceArray>;

public:
    explicit ForeignTable(Counted<graph::LookupTable> real) : t(std::move(real)) {}

    void SetSceneAndContext(k3::Scene* s, Context* c) override { t->SetSceneAndContext(s, c); }
    void Rebuild() override { t->Rebuild(); }
    Context* GetContext() const override { return t->GetContext(); }
    bool IsSelectorPathValid(const graph::Selector& s) override { return t->IsSelectorPathValid(s); }
    void ResolvePersistentSelector(graph::Selector& out, graph::PersistentSelector* s) override {
        t->ResolvePersistentSelector(out, s);
    }
    Stored CreatePersistentSelector(const graph::Selector& s) override {
        return t->CreatePersistentSelector(s);
    }
    Stored SetPathAttributes(const Var& p, const Var& a) override { return t->SetPathAttributes(p, a); }
    Stored GetOrCreatePersistentSelector(const String& i, const Var& p, const Var& a) override {
        return t->GetOrCreatePersistentSelector(i, p, a);
    }
    Stored FindPersistentSelector(const String& i) override { return t->FindPersistentSelector(i); }
    Ref GetOrCreateReferenceWithTarget(const Var& v, const String& i) override {
        return t->GetOrCreateReferenceWithTarget(v, i);
    }
    Ref GetOrCreateReference(const String& i) override { return t->GetOrCreateReference(i); }
    Ref CreateReferenceFrom(graph::Reference* r, const String& i) override {
        return t->CreateReferenceFrom(r, i);
    }
    Ref GetOrCreateBsReferenceWithTarget(const Var& v, const String& i, const String& b) override {
        return t->GetOrCreateBsReferenceWithTarget(v, i, b);
    }
    Ref GetOrCreateBsReference(const String& i, const String& b) override {
        return t->GetOrCreateBsReference(i, b);
    }
    Ref LoadExternalReference(graph::Reference* r, const Var& v, const String& i) override {
        return t->LoadExternalReference(r, v, i);
    }
    Ref LoadFileIntoScene(const String& f, const String& i, const Var& o, const Guid& g) override {
        return t->LoadFileIntoScene(f, i, o, g);
    }
    Ref GetOrLoadFile(const String& f, const String& i, const String& b, const Var& o,
                      const Guid& g) override {
        return t->GetOrLoadFile(f, i, b, o, g);
    }
    Ref MergeFile(const String& f, const String& i, const String& b) override {
        return t->MergeFile(f, i, b);
    }
    Ref MergeStream(Stream* s, const String& i, const String& b) override { return t->MergeStream(s, i, b); }
    Ref FindReferenceById(const String& i) override { return t->FindReferenceById(i); }
    Inst FindInstanceById(const String& i) override { return t->FindInstanceById(i); }
    Ref FindReferenceByBsId(const String& b) override { return t->FindReferenceByBsId(b); }
    Inst FindInstanceByBsId(const String& b) override { return t->FindInstanceByBsId(b); }
    void RegisterInstanceWithBsId(graph::Instance* i) override { t->RegisterInstanceWithBsId(i); }
    void RegisterReferenceWithBsId(graph::Reference* r) override { t->RegisterReferenceWithBsId(r); }
    void RegisterInstance(graph::Instance* i) override { t->RegisterInstance(i); }
    void RegisterReference(graph::Reference* r) override { t->RegisterReference(r); }
    void PushIdPrefix(Element* e) override { t->PushIdPrefix(e); }
    void PopIdPrefix() override { t->PopIdPrefix(); }
    String GetCurrentIdPrefix() const override { return t->GetCurrentIdPrefix(); }
    String GenerateEntityId() override { return t->GenerateEntityId(); }
    String GenerateNodeId() override { return t->GenerateNodeId(); }
    String GenerateSelectorId() override { return t->GenerateSelectorId(); }
    Nodes GetNodesOfInstance(graph::Instance* i) override { return t->GetNodesOfInstance(i); }
    Nodes GetNodesOfSelector(const graph::Selector& s, bool e) override {
        return t->GetNodesOfSelector(s, e);
    }
    Inst GetInstanceOfNode(k3::Node* n) override { return t->GetInstanceOfNode(n); }
    void ApplyPendingBindings() override { t->ApplyPendingBindings(); }
    void ApplyElementChanges(k3::Node* n) override { t->ApplyElementChanges(n); }
    String DumpNodeMap() const override { return t->DumpNodeMap(); }
    void ReadIdFilter() override { t->ReadIdFilter(); }
    bool IsPathAllowed(const String& p) const override { return t->IsPathAllowed(p); }
    bool IsIdAllowed(const String& i) const override { return t->IsIdAllowed(i); }
    bool IsElementAllowed(Element* e) const override { return t->IsElementAllowed(e); }

private:
    Counted<graph::LookupTable> t;
};

}  // namespace qn::test

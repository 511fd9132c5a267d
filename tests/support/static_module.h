#pragma once

#include "engine/runtime/class_table.h"
#include "engine/runtime/modules.h"

#include <memory>
#include <vector>

namespace qn::test {

/// Registers an entry function that is linked into the test program (the module's `K3DLLFunc`, a fake one)
/// while it lives.
class EntryModule {
public:
    explicit EntryModule(ModuleEntry entry);
    ~EntryModule();
    EntryModule(const EntryModule&) = delete;
    EntryModule& operator=(const EntryModule&) = delete;

    ModuleHandle Handle() { return this; }
};

/// A module made of rows: the classes of the layers that a test program links, without the frame above them.
/// Usually a static object of the test program:
///
///     const StaticModule g_module({{"qn.graph.instance", &MakeOf<graph::InstanceImpl>}, ...});
class StaticModule {
public:
    explicit StaticModule(const std::vector<ClassRow>& rows);
    ~StaticModule();
    StaticModule(const StaticModule&) = delete;
    StaticModule& operator=(const StaticModule&) = delete;

private:
    std::unique_ptr<EntryModule> module_;
};

/// One call that a fake module received.
struct ModuleCall {
    unsigned code;
    void* first;
    void* second;
};

/// A module that makes nothing, records its calls and answers what it is told to. One at a time.
class FakeModule {
public:
    FakeModule();
    ~FakeModule();
    FakeModule(const FakeModule&) = delete;
    FakeModule& operator=(const FakeModule&) = delete;

    const std::vector<ModuleCall>& Calls() const;
    /// How often the code was called.
    int Count(unsigned code) const;

private:
    std::unique_ptr<EntryModule> module_;
};

}  // namespace qn::test

#include "tests/support/static_module.h"

#include "engine/runtime/engine.h"

#include <algorithm>

namespace qn::test {
namespace {

// An entry is a plain function, so what it works on stands here.
std::vector<ClassRow> g_rows;
std::vector<ModuleCall> g_calls;

std::uintptr_t RowsEntry(unsigned code, void* first, void* second) {
    if (code == ModuleCode::kRegister) {
        for (const ClassRow& row : g_rows)
            api->RegisterExtension(second, row.key, 0, String::FromUtf8(row.key));
        return 1;
    }
    if (code != ModuleCode::kCreate) return 0;
    const auto* key = static_cast<const char*>(first);
    for (const ClassRow& row : g_rows) {
        if (EqualKeys(row.key, key)) return reinterpret_cast<std::uintptr_t>(row.make());
    }
    return 0;
}

std::uintptr_t RecordingEntry(unsigned code, void* first, void* second) {
    g_calls.push_back({code, first, second});
    return code == ModuleCode::kRegister || code == ModuleCode::kPostLoad ? 1 : 0;
}

}  // namespace

EntryModule::EntryModule(ModuleEntry entry) {
    StartEngine();
    RegisterEntry(this, entry);
}

EntryModule::~EntryModule() {
    Modules().Remove(this);
}

StaticModule::StaticModule(std::vector<ClassRow> rows) {
    g_rows = std::move(rows);
    module_ = std::make_unique<EntryModule>(&RowsEntry);
}

StaticModule::~StaticModule() {
    module_.reset();
    g_rows.clear();
}

FakeModule::FakeModule() {
    g_calls.clear();
    module_ = std::make_unique<EntryModule>(&RecordingEntry);
}

FakeModule::~FakeModule() = default;

const std::vector<ModuleCall>& FakeModule::Calls() const {
    return g_calls;
}

int FakeModule::Count(unsigned code) const {
    return static_cast<int>(std::count_if(g_calls.begin(), g_calls.end(),
                                          [&](const ModuleCall& call) { return call.code == code; }));
}

}  // namespace qn::test

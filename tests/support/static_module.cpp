#include "tests/support/static_module.h"

#include "engine/runtime/engine.h"

#include <algorithm>

namespace qn::test {
namespace {

// An entry is a plain function, so what it works on stands here.
struct OwnedRow {
    const void* owner;
    ClassRow row;
};
/// Never destroyed: static modules of other files go at the end of the process, too.
std::vector<OwnedRow>& Rows() {
    static std::vector<OwnedRow>& rows = *new std::vector<OwnedRow>;
    return rows;
}
const void* g_registering = nullptr;
std::vector<ModuleCall> g_calls;

void RegisterRows(ModuleHandle handle) {
    for (const auto& [owner, row] : Rows()) {
        if (owner == g_registering) api->RegisterExtension(handle, row.key, 0, String::FromUtf8(row.key));
    }
}

/// Serves all static modules.
std::uintptr_t RowsEntry(unsigned code, void* first, void* second) {
    if (code == ModuleCode::kRegister) {
        RegisterRows(second);
        return 1;
    }
    if (code != ModuleCode::kCreate) return 0;
    const auto* key = static_cast<const char*>(first);
    for (const OwnedRow& owned : Rows()) {
        if (EqualKeys(owned.row.key, key)) return reinterpret_cast<std::uintptr_t>(owned.row.make());
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

StaticModule::StaticModule(const std::vector<ClassRow>& rows) {
    for (const ClassRow& row : rows)
        Rows().push_back({this, row});
    g_registering = this;
    module_ = std::make_unique<EntryModule>(&RowsEntry);
}

StaticModule::~StaticModule() {
    module_.reset();
    std::erase_if(Rows(), [&](const OwnedRow& owned) { return owned.owner == this; });
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

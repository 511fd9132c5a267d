// The one exported function: what the module says of itself, registers and creates.

#include "engine/runtime/modules.h"
#include "frame/entry.h"
#include "frame/host/generator.h"
#include "frame/host/translate.h"
#include "graph/instance.h"
#include "graph/persistent_selector.h"
#include "graph/post_processing_instruction.h"
#include "tests/behaviour/recording_api.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

namespace qn::test {
namespace {

constexpr unsigned kRegister = 0x1001, kVersion = 0x1010, kVersionText = 0x1020, kDescription = 0x1021,
                   kIdentifier = 0x1023, kCreate = 0x10002;

struct Row {
    const char* key;
    const char* displayName;
    unsigned value;
    bool required;  ///< the other classes may come later
};

constexpr Row kRows[] = {
    {"qn.k3.bom", "Bill of Materials", 0x10000000, true},
    {"qn.k3.effectivity", "Effectivity", 0, true},
    {"qn.graph.instance", "Instance", 0x10000000, true},
    {"qn.graph.reference", "Reference", 0x10000000, true},
    {"qn.graph.persistentselector", "Persistent Selector", 0, true},
    {"qn.graph.lookuptable", "Lookup Table", 0, true},
    {"qn.graph.hierarchyfactory", "Hierarchy Factory", 0x10000000, true},
    {"qn.graph.hierarchygenerator", "Assembly Hierarchy", 0x10000000, true},
    {"qn.graph.postprocessinginstruction", "Postprocessing Instruction", 0, true},
    {"qn.graph.hierarchyinformation", "Hierarchy Information", 0, false},
    {"qn.graph.hierarchyoperation", "Hierarchy Operation", 0, false},
    {"qn.graph.hierarchyoperation.invoke", "Hierarchy Operation Invoke", 0x14, false},
    {"qn.graph.hierarchyoperation.discover", "Hierarchy Operation Discover", 0x15, false},
    {"qn.graph.hierarchymerge", "Hierarchy Merge", 0, false},
    {"qn.graph.hierarchyreplace", "Hierarchy Replace", 0, false},
    {"qn.graph.hierarchychecker", "Hierarchy Validator", 0x10000000, true},
    {"qn.utility.sceneutilities", "Scene Utilities", 0, true},
    {"tov.mw.idmanager", "Identifier Manager", 0x10000000, false},
};

/// The handle under which this program registered the module.
ModuleHandle Handle() {
    for (const LoadedModule& module : Modules().Modules()) {
        if (module.entry == &K3DLLFunc) return module.handle;
    }
    return nullptr;
}

std::uintptr_t Register() {
    return K3DLLFunc(kRegister, nullptr, Handle());
}

Counted<Interface> Create(const char* key) {
    return Counted<Interface>::Adopt(
        reinterpret_cast<Interface*>(K3DLLFunc(kCreate, const_cast<char*>(key), nullptr)));
}

std::wstring TextOf(unsigned code, std::size_t capacity, std::size_t size = 64) {
    std::vector<wchar_t> buffer(size, L'#');
    EXPECT_EQ(K3DLLFunc(code, buffer.data(), reinterpret_cast<void*>(capacity)), 1u);
    return {buffer.begin(), buffer.end()};
}

/// The text, its end, and an untouched rest of the buffer.
std::wstring Written(std::wstring text) {
    text.push_back(L'\0');
    text.resize(64, L'#');
    return text;
}

/// Remembers what was translated, and marks it.
struct Translations {
    Translations() {
        seen.clear();
        SetTranslateHook([](const char* catalogue, const char* source, const char* kind) {
            seen.push_back(std::string(catalogue) + "|" + source + "|" + (kind ? kind : ""));
            return String::FromUtf8(std::string("<") + source + ">");
        });
    }
    ~Translations() { SetTranslateHook(nullptr); }
    static inline std::vector<std::string> seen;
};

TEST(ModuleEntry, TellsItsInterfaceVersion) {
    EXPECT_EQ(K3DLLFunc(kVersion, nullptr, nullptr), 0x910u);
}

TEST(ModuleEntry, WritesItsVersionText) {
    EXPECT_TRUE(TextOf(kVersionText, 64) == Written(L"9.0.0.35737"));
    EXPECT_TRUE(TextOf(kVersionText, 12) == Written(L"9.0.0.35737"));
}

TEST(ModuleEntry, CutsItsTextsToTheBuffer) {
    EXPECT_TRUE(TextOf(kVersionText, 11) == Written(L"9.0.0.3573"));
    EXPECT_TRUE(TextOf(kDescription, 9) == Written(L"Assembly"));
    EXPECT_TRUE(TextOf(kVersionText, 1) == Written(L""));
    EXPECT_TRUE(TextOf(kDescription, 1) == Written(L""));
}

TEST(ModuleEntry, WritesNoTextWithoutRoom) {
    for (const unsigned code : {kVersionText, kDescription}) {
        EXPECT_TRUE(TextOf(code, 0) == std::wstring(64, L'#'));
        EXPECT_EQ(K3DLLFunc(code, nullptr, reinterpret_cast<void*>(64)), 1u);
        EXPECT_EQ(K3DLLFunc(code, nullptr, nullptr), 1u);
    }
}

TEST(ModuleEntry, WritesItsTranslatedDescription) {
    EXPECT_TRUE(TextOf(kDescription, 64) == Written(L"Assembly extensions"));
    const Translations translations;
    EXPECT_TRUE(TextOf(kDescription, 64) == Written(L"<Assembly extensions>"));
    EXPECT_EQ(translations.seen, std::vector<std::string>{"assembly|Assembly extensions|XTXT: plugin info"});
}

TEST(ModuleEntry, TranslatesNoVersion) {
    const Translations translations;
    TextOf(kVersionText, 64);
    EXPECT_TRUE(translations.seen.empty());
}

TEST(ModuleEntry, WritesItsIdentifier) {
    std::array<unsigned char, 18> bytes;
    bytes.fill(0xee);
    EXPECT_EQ(K3DLLFunc(kIdentifier, bytes.data(), nullptr), 1u);
    EXPECT_EQ(bytes, (std::array<unsigned char, 18>{0xa4, 0x11, 0xd4, 0x66, 0x53, 0xfc, 0xce, 0x4a, 0x84,
                                                    0x9c, 0x1d, 0xa0, 0x33, 0xee, 0x6b, 0x7a, 0xee, 0xee}));
}

TEST(ModuleEntry, AnswersZeroToUnknownCommandsAndDoesNothing) {
    RecordingApi recorded;
    std::wstring buffer(64, L'#');
    for (const unsigned code : {0u, 1u, 0x1000u, 0x1002u, 0x1008u, 0x100au, 0x1011u, 0x1022u, 0x1024u,
                                0x10001u, 0x10003u, 0x20002u, 0xffffffffu}) {
        EXPECT_EQ(K3DLLFunc(code, buffer.data(), reinterpret_cast<void*>(64)), 0u) << code;
    }
    EXPECT_TRUE(buffer == std::wstring(64, L'#'));
    EXPECT_TRUE(recorded.registered.empty());
    EXPECT_TRUE(recorded.created.empty());
}

TEST(ModuleRegistration, RegistersItsClassesInOrder) {
    RecordingApi recorded;
    EXPECT_EQ(Register(), 1u);
    auto next = recorded.registered.begin();
    for (const Row& row : kRows) {
        const bool here = next != recorded.registered.end() && next->key == row.key;
        EXPECT_TRUE(here || !row.required) << row.key;
        if (!here) continue;
        EXPECT_EQ(next->value, row.value) << row.key;
        EXPECT_EQ(next->displayName.ToUtf8(), row.displayName);
        EXPECT_EQ(next->handle, Handle());
        ++next;
    }
    EXPECT_TRUE(next == recorded.registered.end()) << "not in its place: " << next->key;
}

TEST(ModuleRegistration, TranslatesTheNames) {
    RecordingApi recorded;
    const Translations translations;
    Register();
    ASSERT_EQ(translations.seen.size(), recorded.registered.size());
    for (std::size_t i = 0; i < translations.seen.size(); ++i) {
        const std::string name = recorded.registered[i].displayName.ToUtf8();
        ASSERT_GT(name.size(), 2u);
        EXPECT_EQ(translations.seen[i],
                  "assembly|" + name.substr(1, name.size() - 2) + "|XTXT: extension info");
    }
}

TEST(ModuleRegistration, GoesOnAfterARefusal) {
    std::size_t all = 0;
    for (const bool accepts : {true, false}) {
        RecordingApi recorded;
        recorded.accepts = accepts;
        EXPECT_EQ(Register(), 1u);
        if (accepts) all = recorded.registered.size();
        EXPECT_EQ(recorded.registered.size(), all);
    }
}

TEST(ModuleRegistration, RegistersEverythingAgainWhenAskedTwice) {
    RecordingApi recorded;
    Register();
    const std::size_t once = recorded.registered.size();
    Register();
    EXPECT_EQ(recorded.registered.size(), 2 * once);
}

TEST(ModuleRegistration, PassesTheHandleThatItWasGiven) {
    int other = 0;
    {
        RecordingApi recorded;
        K3DLLFunc(kRegister, nullptr, &other);
        EXPECT_EQ(recorded.registered.at(0).handle, &other);
    }
    RecordingApi recorded;
    Register();
    EXPECT_EQ(recorded.registered.at(0).handle, Handle());
}

TEST(ModuleCreation, MakesEveryRegisteredClassWithOneCount) {
    RecordingApi recorded;
    Register();
    for (const auto& row : recorded.registered) {
        const auto object = Create(row.key.c_str());
        ASSERT_TRUE(object) << row.key;
        EXPECT_EQ(object->GetRefCount(), 1) << row.key;
        const bool operation = row.key.find("qn.graph.hierarchyoperation") == 0;
        EXPECT_EQ(object->GetInterfaceName(), operation ? "qn.graph.hierarchyoperation" : row.key);
        EXPECT_FALSE(object == Create(row.key.c_str())) << row.key;
    }
}

TEST(ModuleCreation, IgnoresCase) {
    for (const Row& row : kRows) {
        if (!row.required) continue;
        std::string key = row.key;
        std::transform(key.begin(), key.end(), key.begin(),
                       [](char c) { return c >= 'a' && c <= 'z' ? c - 32 : c; });
        EXPECT_TRUE(Create(key.c_str())) << key;
    }
}

TEST(ModuleCreation, KnowsNoOtherKeys) {
    for (const char* key : {"qn.graph.resolvercache", "tov.mw.id", "tov.mw.idfield", "qn.wrap<?>", "",
                            "instance", "qn.graph.instance ", " qn.graph.instance", "qn.graph.instanc",
                            "qn.graph.instances", "k3_node", "qn::graph::InstanceImpl"}) {
        EXPECT_EQ(K3DLLFunc(kCreate, const_cast<char*>(key), nullptr), 0u) << key;
    }
    EXPECT_EQ(K3DLLFunc(kCreate, nullptr, nullptr), 0u);
}

TEST(ModuleCreation, AnswersZeroWithoutMemory) {
    for (const Row& row : kRows) {
        mem::FailAllocations(0, 1);
        EXPECT_EQ(K3DLLFunc(kCreate, const_cast<char*>(row.key), nullptr), 0u) << row.key;
        mem::FailAllocations(0, 0);
    }
}

TEST(ModuleCreation, MakesClassesOnTheirBases) {
    EXPECT_TRUE(Cast<graph::Instance>(Create("qn.graph.instance").Get()));
    EXPECT_TRUE(Cast<graph::Reference>(Create("qn.graph.reference").Get()));
    EXPECT_TRUE(Cast<graph::PersistentSelector>(Create("qn.graph.persistentselector").Get()));
    EXPECT_TRUE(Cast<graph::Reference::PostProcessingInstruction>(
        Create("qn.graph.postprocessinginstruction").Get()));
    for (const char* key : {"qn.graph.instance", "qn.graph.reference", "qn.graph.persistentselector"})
        EXPECT_TRUE(Cast<graph::HierarchyElement>(Create(key).Get())) << key;
    for (const char* key : {"qn.graph.lookuptable", "qn.graph.postprocessinginstruction"}) {
        EXPECT_TRUE(Cast<ReferenceSource>(Create(key).Get())) << key;
        EXPECT_FALSE(Cast<graph::HierarchyElement>(Create(key).Get())) << key;
    }
    EXPECT_TRUE(Cast<k3::Generator>(Create("qn.graph.hierarchygenerator").Get()));
    EXPECT_FALSE(Cast<ReferenceSource>(Create("qn.graph.hierarchyfactory").Get()));
}

TEST(ModuleCreation, MakesClassesThatKnowTheirFamily) {
    for (const char* key : {"qn.graph.instance", "qn.graph.reference", "qn.graph.persistentselector",
                            "qn.graph.lookuptable", "qn.graph.postprocessinginstruction"}) {
        const auto object = Create(key);
        for (const char* name : {key, "k3_refsource", "k3_reftarget", "k3_extension", "K3_RefSource"})
            EXPECT_TRUE(object->IsTypeOf(name)) << key << " " << name;
        for (const char* name : {"qn.k3.generator", "qn.k3.entity", "k3_node", ""})
            EXPECT_FALSE(object->IsTypeOf(name)) << key << " " << name;
        EXPECT_FALSE(object->IsTypeOf(nullptr));
    }
}

}  // namespace
}  // namespace qn::test

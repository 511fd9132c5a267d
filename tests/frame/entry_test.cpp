#include "frame/entry.h"

#include "engine/runtime/modules.h"
#include "frame/catalogue.h"
#include "frame/host/module_code.h"
#include "frame/host/translate.h"
#include "frame/host/xml.h"
#include "frame/module.h"
#include "tests/support/static_module.h"

#include <gtest/gtest.h>

#include <array>

namespace qn::test {
namespace {

using ModuleCode::kCreate;

Counted<Interface> Create(const char* key) {
    return Counted<Interface>::Adopt(
        reinterpret_cast<Interface*>(K3DLLFunc(kCreate, const_cast<char*>(key), nullptr)));
}

template <std::size_t N>
std::wstring CopyOf(unsigned code, std::size_t capacity) {
    std::array<wchar_t, N> buffer;
    buffer.fill(L'#');
    EXPECT_EQ(K3DLLFunc(code, buffer.data(), reinterpret_cast<void*>(capacity)), 1u);
    return std::wstring(buffer.data(), N);
}

TEST(Entry, AnswersZeroForAnUnknownCode) {
    EXPECT_EQ(K3DLLFunc(0, nullptr, nullptr), 0u);
    EXPECT_EQ(K3DLLFunc(0x1002, nullptr, nullptr), 0u);
    EXPECT_EQ(K3DLLFunc(0x10001, const_cast<char*>("qn.graph.instance"), nullptr), 0u);
}

TEST(Entry, TellsItsInterfaceVersion) {
    EXPECT_EQ(K3DLLFunc(0x1010, nullptr, nullptr), 0x910u);
}

TEST(Entry, TellsItsVersion) {
    EXPECT_EQ(std::wstring(CopyOf<32>(0x1020, 32).c_str()), L"9.0.0.35737");
}

TEST(Entry, TellsWhatItIs) {
    EXPECT_EQ(std::wstring(CopyOf<64>(0x1021, 64).c_str()), L"Assembly extensions");
}

TEST(Entry, CutsATextThatIsTooLongAndEndsIt) {
    EXPECT_EQ(CopyOf<6>(0x1020, 4), std::wstring(L"9.0\0##", 6));
    EXPECT_EQ(CopyOf<3>(0x1021, 1), std::wstring(L"\0##", 3));
}

TEST(Entry, CopiesNothingWithoutBufferOrCapacityAndStillAnswersOne) {
    EXPECT_EQ(CopyOf<2>(0x1020, 0), L"##");
    EXPECT_EQ(K3DLLFunc(0x1020, nullptr, reinterpret_cast<void*>(8)), 1u);
    EXPECT_EQ(K3DLLFunc(0x1021, nullptr, reinterpret_cast<void*>(8)), 1u);
}

TEST(Entry, TellsItsIdentifier) {
    const std::array<std::uint8_t, 16> expected = {0xa4, 0x11, 0xd4, 0x66, 0x53, 0xfc, 0xce, 0x4a,
                                                   0x84, 0x9c, 0x1d, 0xa0, 0x33, 0xee, 0x6b, 0x7a};
    std::array<std::uint8_t, 16> identifier{};
    EXPECT_EQ(K3DLLFunc(0x1023, identifier.data(), nullptr), 1u);
    EXPECT_EQ(identifier, expected);
}

struct Wanted {
    const char* key;
    const char* name;
    unsigned value = 0;
};

constexpr unsigned kHostFlag = 0x10000000;

/// In the order of registration.
constexpr Wanted kClasses[] = {
    {"qn.k3.bom", "Bill of Materials", kHostFlag},
    {"qn.k3.effectivity", "Effectivity"},
    {"qn.graph.instance", "Instance", kHostFlag},
    {"qn.graph.reference", "Reference", kHostFlag},
    {"qn.graph.persistentselector", "Persistent Selector"},
    {"qn.graph.lookuptable", "Lookup Table"},
    {"qn.graph.hierarchyfactory", "Hierarchy Factory", kHostFlag},
    {"qn.graph.hierarchygenerator", "Assembly Hierarchy", kHostFlag},
    {"qn.graph.postprocessinginstruction", "Postprocessing Instruction"},
    {"qn.graph.hierarchyoperation", "Hierarchy Operation"},
    {"qn.graph.hierarchyoperation.invoke", "Hierarchy Operation Invoke", 0x14},
    {"qn.graph.hierarchyoperation.discover", "Hierarchy Operation Discover", 0x15},
    {"qn.graph.hierarchychecker", "Hierarchy Validator", kHostFlag},
    {"qn.utility.sceneutilities", "Scene Utilities"},
};

TEST(Creation, MakesEveryClassOfTheCatalogueWithOneCount) {
    for (const Wanted& wanted : kClasses) {
        const Counted<Interface> object = Create(wanted.key);
        ASSERT_TRUE(object) << wanted.key;
        EXPECT_EQ(object->GetRefCount(), 1) << wanted.key;
        const bool isOperation = std::string(wanted.key).find("hierarchyoperation") != std::string::npos;
        EXPECT_STREQ(object->GetInterfaceName(), isOperation ? "qn.graph.hierarchyoperation" : wanted.key);
    }
}

TEST(Creation, IgnoresTheCaseOfKeys) {
    const Counted<Interface> object = Create("QN.GRAPH.INSTANCE");
    ASSERT_TRUE(object);
    EXPECT_STREQ(object->GetInterfaceName(), "qn.graph.instance");
}

TEST(Creation, RefusesClassesThatOnlyTheModuleItselfMakes) {
    for (const char* key :
         {"qn.graph.resolvercache", "tov.mw.id", "tov.mw.idfield", "qn.wrap<?>", "", "qn.graph"})
        EXPECT_FALSE(Create(key)) << key;
    EXPECT_EQ(K3DLLFunc(kCreate, nullptr, nullptr), 0u);
}

TEST(Creation, AnswersZeroWithoutMemory) {
    mem::FailAllocations(0, 1);
    EXPECT_FALSE(Create("qn.graph.instance"));
    mem::FailAllocations(0, 0);
    EXPECT_TRUE(Create("qn.graph.instance"));
}

TEST(Creation, AcceptsTheNamesOfAncestors) {
    constexpr Wanted kAncestors[] = {
        {"qn.graph.instance", "K3_RefSource"},          {"qn.graph.instance", "k3_reftarget"},
        {"qn.graph.reference", "k3_extension"},         {"qn.graph.lookuptable", "k3_refsource"},
        {"qn.graph.hierarchyfactory", "k3_extension"},  {"qn.graph.hierarchygenerator", "qn.k3.generator"},
        {"qn.graph.hierarchygenerator", "k3_reftarget"}};
    for (const Wanted& row : kAncestors)
        EXPECT_TRUE(Create(row.key)->IsTypeOf(row.name)) << row.key << row.name;
    EXPECT_FALSE(Create("qn.graph.hierarchyfactory")->IsTypeOf("k3_refsource"));
    EXPECT_FALSE(Create("qn.graph.instance")->IsTypeOf("qn.graph.reference"));
    EXPECT_FALSE(Create("qn.graph.instance")->IsTypeOf(nullptr));
}

TEST(Creation, ComparesKeysInAnOrderOfItsOwn) {
    ASSERT_EQ(frame::CreationOrder().size(), frame::Catalogue().size());
    EXPECT_NE(static_cast<const void*>(frame::CreationOrder().data()),
              static_cast<const void*>(frame::Catalogue().data()));
    const std::vector<std::string> expected = {"qn.k3.bom",
                                               "qn.k3.effectivity",
                                               "qn.graph.instance",
                                               "qn.graph.reference",
                                               "qn.graph.persistentselector",
                                               "qn.graph.lookuptable",
                                               "qn.graph.hierarchyfactory",
                                               "qn.graph.hierarchygenerator",
                                               "qn.graph.postprocessinginstruction",
                                               "qn.graph.hierarchyoperation",
                                               "qn.graph.hierarchyoperation.invoke",
                                               "qn.graph.hierarchyoperation.discover",
                                               "qn.graph.hierarchychecker",
                                               "qn.utility.sceneutilities"};
    std::vector<std::string> keys;
    for (const frame::CreationRow& row : frame::CreationOrder())
        keys.emplace_back(row.key);
    EXPECT_EQ(keys, expected);
}

class Registration : public testing::Test {
protected:
    std::vector<ExtensionRow> RowsOf(ModuleHandle handle) const {
        std::vector<ExtensionRow> rows;
        for (const ExtensionRow& row : Modules().Extensions())
            if (row.handle == handle) rows.push_back(row);
        return rows;
    }
    EntryModule module_{&K3DLLFunc};
};

TEST_F(Registration, KeepsTheHandle) {
    EXPECT_EQ(frame::GetModuleHandle(), module_.Handle());
}

TEST_F(Registration, PassesTheCatalogueInItsOrderWithItsValues) {
    const auto rows = RowsOf(module_.Handle());
    ASSERT_EQ(rows.size(), std::size(kClasses));
    for (std::size_t i = 0; i < rows.size(); ++i) {
        EXPECT_EQ(rows[i].key, kClasses[i].key);
        EXPECT_EQ(rows[i].displayName.ToUtf8(), kClasses[i].name);
        EXPECT_EQ(rows[i].value, kClasses[i].value) << rows[i].key;
    }
}

TEST_F(Registration, DoneTwiceRegistersTwice) {
    EXPECT_EQ(K3DLLFunc(ModuleCode::kRegister, nullptr, module_.Handle()), 1u);
    EXPECT_EQ(RowsOf(module_.Handle()).size(), 2 * std::size(kClasses));
}

std::vector<std::string> askedFor;

String Recorder(const char* catalogue, const char* source, const char* kind) {
    askedFor.push_back(std::string(catalogue) + "|" + source + "|" + kind);
    return String(L"translated");
}

TEST_F(Registration, TranslatesTheDisplayNames) {
    askedFor.clear();
    SetTranslateHook(&Recorder);
    K3DLLFunc(ModuleCode::kRegister, nullptr, module_.Handle());
    SetTranslateHook(nullptr);
    ASSERT_EQ(askedFor.size(), std::size(kClasses));
    EXPECT_EQ(askedFor[0], "assembly|Bill of Materials|XTXT: extension info");
    EXPECT_EQ(RowsOf(module_.Handle()).back().displayName, String(L"translated"));
}

TEST_F(Registration, CarriesTheDescriptionOfTheOperations) {
    const auto document = CreateAs<xml::Element>("qnxmldocument");
    const auto operations = CreateAs<Extension>("qn.graph.hierarchyoperation.discover");
    ASSERT_TRUE(document && operations);
    EXPECT_EQ(operations->QueryInfo(document.Get(), 0), ResultEnum::kSuccess);
    EXPECT_NE(document->FindChild(L"Interface"), nullptr);
}

TEST_F(Registration, MakesTheClassesKnownToTheHost) {
    const auto object = api->Create("Qn.Graph.LookupTable");
    ASSERT_TRUE(object);
    EXPECT_STREQ(object->GetInterfaceName(), "qn.graph.lookuptable");
}

}  // namespace
}  // namespace qn::test

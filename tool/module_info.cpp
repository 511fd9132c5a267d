#include "engine/runtime/modules.h"
#include "tool/session.h"
#include "tool/terminal.h"
#include "tool/verbs.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace assembly::tool {
namespace {

constexpr const char* kExamples =
    "Examples:\n"
    "  assembly module                    versions, identifier and classes of the loaded module\n"
    "  assembly module --format json      the same for scripts\n\n"
    "Prints what the module answers through its exported function.";

constexpr std::size_t kTextCapacity = 512;
constexpr std::size_t kIdentifierSize = 16;

/// What a module says of itself.
struct ModuleInfo {
    unsigned interfaceVersion = 0;
    std::string version, description, identifier;
    std::vector<const qn::ExtensionRow*> classes;
};

std::string AskText(const qn::LoadedModule& module, unsigned code) {
    std::array<wchar_t, kTextCapacity> buffer{};
    module.entry(code, buffer.data(), reinterpret_cast<void*>(buffer.size()));
    return qn::String(buffer.data()).ToUtf8();
}

std::string AskIdentifier(const qn::LoadedModule& module) {
    std::array<std::uint8_t, kIdentifierSize> bytes{};
    module.entry(qn::ModuleCode::kIdentifier, bytes.data(), nullptr);
    return qn::Guid(bytes).ToText().ToUtf8();
}

ModuleInfo Ask(const qn::LoadedModule& module) {
    ModuleInfo info;
    info.interfaceVersion =
        static_cast<unsigned>(module.entry(qn::ModuleCode::kInterfaceVersion, nullptr, nullptr));
    info.version = AskText(module, qn::ModuleCode::kVersionText);
    info.description = AskText(module, qn::ModuleCode::kDescription);
    info.identifier = AskIdentifier(module);
    for (const qn::ExtensionRow& row : qn::Modules().Extensions())
        if (row.handle == module.handle) info.classes.push_back(&row);
    return info;
}

std::string Hex(unsigned value) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%x", value);
    return text;
}

void WriteTable(Output& output, const ModuleInfo& info) {
    output.Line("description        " + info.description);
    output.Line("version            " + info.version);
    output.Line("interface version  " + Hex(info.interfaceVersion));
    output.Line("identifier         " + info.identifier);
    output.Line();
    std::size_t width = 0;
    for (const auto* row : info.classes)
        width = std::max(width, row->key.size());
    for (const auto* row : info.classes) {
        std::string value = Hex(row->value);
        value.resize(12, ' ');
        output.Line(row->key + std::string(width + 2 - row->key.size(), ' ') + value +
                    row->displayName.ToUtf8());
    }
}

void WriteJson(Output& output, const ModuleInfo& info) {
    output.Line("{");
    output.Line("  \"description\": " + Quoted(info.description) + ",");
    output.Line("  \"version\": " + Quoted(info.version) + ",");
    output.Line("  \"interface_version\": " + std::to_string(info.interfaceVersion) + ",");
    output.Line("  \"identifier\": " + Quoted(info.identifier) + ",");
    output.Write("  \"classes\": [");
    const char* separator = "\n";
    for (const auto* row : info.classes) {
        output.Write(separator);
        output.Write("    {\"key\": " + Quoted(row->key) + ", \"value\": " + std::to_string(row->value) +
                     ", \"name\": " + Quoted(row->displayName.ToUtf8()) + "}");
        separator = ",\n";
    }
    output.Line("\n  ]\n}");
}

void Run(const std::string& format) {
    Session session;
    Output output;
    const ModuleInfo info = Ask(qn::Modules().Modules().front());
    if (format == "json")
        WriteJson(output, info);
    else
        WriteTable(output, info);
}

}  // namespace

void AddModule(CLI::App& app) {
    auto format = std::make_shared<std::string>("table");
    CLI::App* verb = app.add_subcommand("module", "Show what the loaded module says of itself");
    verb->description(kExamples);
    verb->add_option("--format", *format, "table or json")->check(CLI::IsMember({"table", "json"}));
    verb->callback([format] { Run(*format); });
}

}  // namespace assembly::tool

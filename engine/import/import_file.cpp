#include "engine/import/import_file.h"

#include "engine/import/importer_registry.h"
#include "engine/import/scene_importer.h"
#include "engine/runtime/context_impl.h"
#include "engine/runtime/modules.h"
#include "frame/host/importer.h"
#include "frame/host/scene.h"

#include <algorithm>
#include <exception>

namespace qn {
namespace {

/// One import: what each step needs to work and to fail with the file's name in front.
struct Import {
    String file;
    k3::Scene* scene;
    Context* context;

    std::nullptr_t Fail(LoadFailure kind, const String& cause) const {
        context->Fail(kind, file + L": " + cause);
        return nullptr;
    }
};

/// The part of a path behind its last slash of either kind.
std::wstring_view FileName(const String& file) {
    const std::wstring_view path = file.View();
    const std::size_t slash = path.find_last_of(L"/\\");
    return slash == std::wstring_view::npos ? path : path.substr(slash + 1);
}

/// The name ends before the last dot; one that starts with its only dot is kept.
String NameOfTop(const String& file) {
    const std::wstring_view name = FileName(file);
    const std::size_t dot = name.find_last_of(L'.');
    return String(dot == std::wstring_view::npos || dot == 0 ? name : name.substr(0, dot));
}

/// What an unknown file starts with, in words.
String DescribeHead(std::string_view head) {
    constexpr std::size_t kShown = 16;
    std::string shown;
    for (const char letter : head.substr(0, kShown))
        shown += letter >= ' ' && letter <= '~' ? letter : '.';
    return L"it starts with \"" + String::FromUtf8(shown) + L"\"";
}

const ImporterRecord* ChooseImporter(const Import& import, const Guid& guid) {
    std::string head;
    String reason;
    if (!ProbeFile(import.file, head, reason)) return import.Fail(LoadFailure::kUnreadable, reason);
    if (head.empty()) return import.Fail(LoadFailure::kMalformed, L"the file is empty");
    const std::string name = String(FileName(import.file)).ToUtf8();
    if (const ImporterRecord* record = Importers().Choose(guid, head, name)) return record;
    return import.Fail(LoadFailure::kUnreadable, L"unknown format, " + DescribeHead(head) +
                                                     L"; known formats: " + Importers().Describe());
}

Counted<Importer> CreateImporter(const Import& import, const ImporterRecord& record) {
    String reason;
    if (!record.modulePath.empty() && !LoadModuleFile(String::FromUtf8(record.modulePath), &reason)) {
        return import.Fail(LoadFailure::kDefect, reason);
    }
    auto importer = CreateAs<Importer>(record.key.c_str());
    if (!importer) import.Fail(LoadFailure::kDefect, L"the importer for " + record.name + L" cannot be made");
    return importer;
}

/// Importers stand on libraries of others: nothing that these throw goes further.
ResultEnum RunImporter(const Import& import, Importer& importer, k3::Node* top) {
    try {
        return importer.Import(import.file, import.scene, top, import.context);
    } catch (const std::bad_alloc&) {
        import.Fail(LoadFailure::kLimit, L"not enough memory");
    } catch (const std::exception& error) {
        import.Fail(LoadFailure::kDefect, L"the importer broke off: " + String::FromUtf8(error.what()));
    } catch (...) {
        import.Fail(LoadFailure::kDefect, L"the importer broke off");
    }
    return ResultEnum::kNothing;
}

bool FillTop(const Import& import, const ImporterRecord& record, Importer& importer, k3::Node* top) {
    const ResultEnum result = RunImporter(import, importer, top);
    if (import.context->IsCancelled()) {
        import.Fail(LoadFailure::kCancelled, L"cancelled");
        return false;
    }
    if (Succeeded(result)) return true;
    if (import.context->GetFailure() == LoadFailure::kNone) {
        import.Fail(LoadFailure::kMalformed, L"cannot be read as " + record.name);
    }
    return false;
}

/// The importer fills an empty top node, which goes again if that fails.
k3::Node* ImportWithModule(const Import& import, const ImporterRecord& record) {
    const auto importer = CreateImporter(import, record);
    if (!importer) return nullptr;
    const Counted<k3::Node> top(import.scene->CreateEmptyNode(0, 0, 0));
    top->SetName(NameOfTop(import.file).c_str());
    if (FillTop(import, record, *importer, top.Get())) return top.Get();
    import.scene->_RemoveChild(top.Get(), true);
    return nullptr;
}

k3::Node* ImportInto(const Import& import, const Guid& guid) {
    if (import.context->IsCancelled()) return import.Fail(LoadFailure::kCancelled, L"cancelled");
    const ImporterRecord* known = ChooseImporter(import, guid);
    if (!known) return nullptr;
    const ImporterRecord record = *known;  // the import may load files, which may change the registry
    import.scene->BeginUpdate();
    k3::Node* top = record.modulePath.empty()
                        ? ImportSceneFile(import.scene, import.file, NameOfTop(import.file), import.context)
                        : ImportWithModule(import, record);
    import.scene->EndUpdate();
    if (const auto* context = Cast<ContextImpl>(import.context); top && context) context->NoteImport(*top);
    return top;
}

}  // namespace

k3::Node* ImportFile(k3::Scene* scene, const String& file, Context* context, unsigned, const Guid& importer) {
    if (!scene) return nullptr;
    const Counted<Context> used = context ? Counted<Context>(context) : Counted<Context>(Make<ContextImpl>());
    return ImportInto({file, scene, used.Get()}, importer);
}

}  // namespace qn

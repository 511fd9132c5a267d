#include "tool/session.h"

#include "engine/import/import_file.h"
#include "engine/platform/headless_platform.h"
#include "engine/runtime/context_impl.h"
#include "engine/runtime/engine.h"
#include "engine/stream/format.h"
#include "engine/stream/scene_file.h"
#include "engine/stream/stored_generator.h"
#include "frame/host/collections.h"
#include "frame/host/importer.h"
#include "frame/host/parameter_ids.h"
#include "tool/cancel.h"
#include "tool/failure.h"

#include <unistd.h>
#include <algorithm>
#include <csignal>
#include <cstdio>
#include <utility>

namespace assembly::tool {
namespace {

using qn::ContextImpl;
using qn::Counted;
using qn::String;
using qn::Var;

constexpr unsigned kLoadFlags = 0x800002a;
constexpr int kErrorLevel = 2;

ContextImpl* running = nullptr;

void CancelRunning(int) {
    NoteCancel();
    if (running) running->Cancel();
}

void WriteBar(double fraction) {
    std::fprintf(stderr, fraction < 1 ? "\r%3d %%" : "\r     \r", static_cast<int>(fraction * 100));
    std::fflush(stderr);
}

void WriteProgressLine(double fraction) {
    std::fprintf(stderr, "{\"progress\": %.3f}\n", fraction);
    std::fflush(stderr);
}

ContextImpl::ProgressFunction ProgressWriter(ProgressStyle style) {
    const bool bar = style == ProgressStyle::kAuto && ::isatty(STDERR_FILENO);
    if (!bar && style != ProgressStyle::kJson) return nullptr;
    return [bar, last = -1](double fraction) mutable {
        const int percent = static_cast<int>(fraction * 100);
        if (percent != last) bar ? WriteBar(fraction) : WriteProgressLine(fraction);
        last = percent;
        return true;
    };
}

Var OptionsOf(const LoadRequest& request) {
    Var options;
    options.InitMap();
    if (request.structureOnly) options.At(qn::LoadOption::kStructureOnly) = Var(true);
    if (request.tolerance > 0) options.At(qn::LoadOption::kTolerance) = Var(request.tolerance);
    return options;
}

bool IsSceneFile(const String& file) {
    std::string head;
    String reason;
    return qn::ProbeFile(file, head, reason) && head.starts_with(qn::scene_file::kMagic);
}

/// A scene file is a whole document, with all its structures; any other file becomes the one top node of a
/// new one.
bool LoadInto(qn::k3::Scene& scene, const String& file, ContextImpl& context) {
    if (IsSceneFile(file)) return qn::LoadSceneFile(file, scene, context);
    return scene.LoadFile(file.c_str(), &context, kLoadFlags, qn::Guid()) != nullptr;
}

/// Messages from `first` on that did not stop the load.
void PrintWarnings(const ContextImpl& context, std::size_t first) {
    const auto& messages = context.GetMessages();
    for (std::size_t i = first; i < messages.size(); ++i)
        if (messages[i].level <= kErrorLevel)
            std::fprintf(stderr, "assembly: %s\n", messages[i].text.Utf8CStr());
}

/// What a host would have shown its user while the file was opened, from box `first` on.
void PrintBoxes(const std::string& file, std::size_t first) {
    const auto& boxes = qn::GetHeadlessPlatform().Boxes();
    for (std::size_t i = first; i < boxes.size(); ++i) {
        std::string text = boxes[i].text.ToUtf8();
        std::replace(text.begin(), text.end(), '\n', ' ');
        std::fprintf(stderr, "assembly: %s: %s: %s\n", file.c_str(), boxes[i].caption.Utf8CStr(),
                     text.c_str());
    }
}

}  // namespace

Session::Session(ProgressStyle progress) {
    String reason;
    if (!qn::StartEngineWithAssembly(&reason))
        throw Failure(ExitCode::kDefect, "the assembly module could not be loaded: " + reason.ToUtf8());
    auto context = qn::Make<ContextImpl>();
    if (auto write = ProgressWriter(progress))
        context->SetProgressFunction([this, write = std::move(write)](double fraction) {
            return write(progressFrom_ + fraction * (progressTo_ - progressFrom_));
        });
    running = context.Get();
    context_ = context;
    std::signal(SIGINT, &CancelRunning);
    std::signal(SIGTERM, &CancelRunning);
    std::signal(SIGPIPE, SIG_IGN);
}

void Session::SetProgressRange(double from, double to) {
    progressFrom_ = from;
    progressTo_ = to;
}

Session::~Session() {
    running = nullptr;
}

Counted<qn::k3::Scene> Session::Load(const LoadRequest& request) {
    auto& context = static_cast<ContextImpl&>(*context_);
    context.SetParamVar(qn::Param::kLoadOptions, OptionsOf(request));
    context.SetOption(qn::kInertGenerators, request.graphOnly ? 1 : 0);
    context.SetOption(qn::kUncheckedLoad, request.unchecked ? 1 : 0);
    const std::size_t known = context.GetMessages().size();
    const std::size_t shown = qn::GetHeadlessPlatform().Boxes().size();
    auto scene = qn::Make<qn::k3::Scene>();
    const String file = String::FromUtf8(request.file);
    ++loads_;
    const bool isLoaded = LoadInto(*scene, file, context);
    if (context.IsCancelled()) throw Failure(ExitCode::kCancelled, request.file + ": cancelled");
    if (!isLoaded)
        throw Failure(CodeOf(context.GetFailure()), FailureText(request.file, "could not be loaded"));
    PrintWarnings(context, known);
    PrintBoxes(request.file, shown);
    return scene;
}

std::string Session::FailureText(const std::string& file, const std::string& otherwise) const {
    const std::string cause = static_cast<const ContextImpl&>(*context_).GetFailureText().ToUtf8();
    if (cause.empty()) return file + ": " + otherwise;
    return cause.find(file) == std::string::npos ? file + ": " + cause : cause;
}

}  // namespace assembly::tool

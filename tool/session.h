#pragma once

#include "frame/host/context.h"
#include "frame/host/counted.h"
#include "frame/host/scene_document.h"

#include <string>

namespace assembly::tool {

/// How a file is read.
struct LoadRequest {
    std::string file;            ///< UTF-8
    bool structureOnly = false;  ///< no geometry
    bool graphOnly = false;      ///< definitions and uses are enough: nothing is indexed or generated
    bool unchecked = false;      ///< a scene file comes as it is stored, damage included
    double tolerance = 0;        ///< of tessellation, millimetres; 0: by size
};

enum class ProgressStyle { kAuto, kNone, kJson };

/// The engine with the module, for one run of the tool.
class Session {
public:
    /// Starts the engine and loads the module that stands beside the tool. Fails with kDefect if that is not
    /// to be had.
    explicit Session(ProgressStyle progress = ProgressStyle::kAuto);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// A new scene with the file's top node; a scene file as it is, with all its structures. Fails with the
    /// code that the cause stands for.
    qn::Counted<qn::k3::Scene> Load(const LoadRequest& request);
    /// Which part of the whole the next steps are: their progress is shown as going from `from` to `to`.
    void SetProgressRange(double from, double to);
    /// How many files were opened so far.
    std::size_t GetLoadCount() const { return loads_; }
    /// The context of the present run, borrowed.
    qn::Context& GetContext() { return *context_; }
    /// "FILE: cause", with the cause that the context knows, else `otherwise`.
    std::string FailureText(const std::string& file, const std::string& otherwise) const;

private:
    qn::Counted<qn::Context> context_;
    std::size_t loads_ = 0;
    double progressFrom_ = 0;
    double progressTo_ = 1;
};

}  // namespace assembly::tool

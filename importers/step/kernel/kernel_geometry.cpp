#include "importers/step/geometry_entry.h"
#include "importers/step/kernel/kernel_guard.h"
#include "importers/step/kernel/kernel_reader.h"
#include "importers/step/kernel/kernel_watch.h"
#include "importers/step/part21_numbers.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <type_traits>
#include <unordered_set>

namespace qn::step {
namespace {

/// Shares of the progress: reading the file again, building shapes; the rest is triangulation.
constexpr double kAfterReading = 0.3;
constexpr double kAfterBuilding = 0.7;

/// The kernel keeps settings and messages in global places: one file at a time.
std::mutex kernelMutex;

class GeometryRun {
public:
    GeometryRun(const StructureResult& structure, const MeshSink& take, const ProgressSink& progress,
                GeometryResult& result)
        : model_(structure.model),
          colours_(structure.colours),
          file_(*structure.file),
          take_(take),
          progress_(progress),
          result_(result),
          watch_(new KernelWatch([this] { return Report(); })) {}

    GeometryRun(const GeometryRun&) = delete;
    GeometryRun& operator=(const GeometryRun&) = delete;

    /// After a fault the kernel's objects are not taken down: that could fault again.
    ~GeometryRun() {
        if (!hasFaulted_) return;
        static_cast<void>(reader_.release());
        static_cast<void>(new auto(std::move(shapes_)));
    }

    void Read(const std::string& name) {
        const GuardResult outcome = RunGuarded([&] { reader_ = MakeReader(); });
        if (outcome.error.empty()) return;
        result_.error = name + ": " + outcome.error;
        if (result_.cause == Cause::kNone) result_.cause = Cause::kMalformed;
    }

    void Build() {
        shapes_.resize(model_.definitions.size());
        for (std::size_t i = 0; i < shapes_.size() && Go(kAfterReading, kAfterBuilding, i); ++i)
            if (!Watch(i, [&] { BuildDefinition(i); })) shapes_[i].clear();
    }

    void Triangulate(const Tessellation& tessellation) {
        FaceColours faces;
        Guard("colours", [&] { faces = reader_->ColoursOfFaces(colours_); });
        for (std::size_t i = 0; i < shapes_.size() && Go(kAfterBuilding, 1, i); ++i) {
            if (shapes_[i].empty()) continue;
            MeshData mesh;
            const bool isDone =
                Watch(i, [&] { mesh = MeshShapes(shapes_[i], faces, tessellation, *watch_); });
            shapes_[i].clear();
            if (isDone && !mesh.IsEmpty()) take_(i, std::move(mesh));
        }
    }

    /// Reports how far the work is; false if it is to stop.
    bool Go(double from, double to, std::size_t done) {
        const double share =
            shapes_.empty() ? 1 : static_cast<double>(done) / static_cast<double>(shapes_.size());
        fraction_ = from + (to - from) * share;
        return Report();
    }

private:
    std::unique_ptr<KernelReader> MakeReader() try {
        const std::string shapes = file_.Extract(NeededRepresentations());
        RefuseHugeNumbers(shapes);
        return std::make_unique<KernelReader>(shapes);
    } catch (const ReadFailure& failure) {
        result_.cause = failure.GetCause();
        throw;
    }

    bool Report() {
        if (progress_ && !progress_(fraction_)) result_.isCancelled = true;
        return result_.Ok();
    }

    std::vector<EntityId> NeededRepresentations() const {
        std::vector<EntityId> needed;
        for (const Definition& definition : model_.definitions)
            for (const ShapePiece& piece : definition.shapes)
                needed.push_back(piece.representation);
        return needed;
    }

    void BuildDefinition(std::size_t index) {
        std::unordered_set<EntityId> seen;
        for (const ShapePiece& piece : model_.definitions[index].shapes) {
            const auto colour = colours_.find(piece.representation);
            for (const EntityId item : piece.items) {
                if (!seen.insert(item).second) continue;
                PlacedShape placed;
                placed.shape = reader_->BuildItem(piece.representation, item, watch_->Range());
                placed.toDefinition = piece.toDefinition;
                if (colour != colours_.end()) placed.colour = colour->second;
                if (!placed.shape.IsNull()) shapes_[index].push_back(placed);
            }
        }
    }

    /// Work for one definition. False if it was not finished in time or by a stop; what fails otherwise
    /// leaves what there is.
    template <class Work>
    bool Watch(std::size_t index, Work&& work) {
        const std::string name = "\"" + model_.definitions[index].name + "\"";
        watch_->BeginDefinition();
        Guard(name, work);
        if (watch_->TookTooLong())
            result_.warnings.push_back(name + ": no geometry, it takes longer than " +
                                       std::to_string(KernelWatch::kLongestWork.count()) + " seconds");
        return !watch_->TookTooLong() && result_.Ok();
    }

    void Guard(const std::string& name, const std::function<void()>& work) {
        const GuardResult outcome = RunGuarded(work);
        hasFaulted_ = hasFaulted_ || outcome.isFault;
        if (!outcome.error.empty()) result_.warnings.push_back(name + ": " + outcome.error);
    }

    const StepModel& model_;
    const ColourTable& colours_;
    const ExchangeFile& file_;
    const MeshSink& take_;
    const ProgressSink& progress_;
    GeometryResult& result_;
    Handle(KernelWatch) watch_;
    double fraction_ = 0;
    std::unique_ptr<KernelReader> reader_;
    std::vector<std::vector<PlacedShape>> shapes_;
    bool hasFaulted_ = false;
};

}  // namespace

}  // namespace qn::step

extern "C" [[gnu::visibility("default")]] void ReadStepGeometry(const qn::step::StructureResult& structure,
                                                                const qn::step::Tessellation& tessellation,
                                                                const qn::step::MeshSink& take,
                                                                const qn::step::ProgressSink& progress,
                                                                qn::step::GeometryResult& result) {
    using namespace qn::step;
    const std::lock_guard lock(kernelMutex);
    const QuietKernel quiet;
    GeometryRun run(structure, take, progress, result);
    run.Read(structure.name);
    if (result.Ok() && run.Go(kAfterReading, kAfterReading, 0)) run.Build();
    if (result.Ok()) run.Triangulate(tessellation);
}

static_assert(std::is_same_v<decltype(&ReadStepGeometry), qn::step::GeometryEntry>);

#include "importers/step/step_geometry.h"

#include <algorithm>
#include <memory>
#include <mutex>
#include <unordered_set>

#include "importers/step/kernel_guard.h"
#include "importers/step/kernel_reader.h"

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
          result_(result) {}

    GeometryRun(const GeometryRun&) = delete;
    GeometryRun& operator=(const GeometryRun&) = delete;

    /// After a fault the kernel's objects are not taken down: that could fault again.
    ~GeometryRun() {
        if (!hasFaulted_) return;
        static_cast<void>(reader_.release());
        static_cast<void>(new auto(std::move(shapes_)));
    }

    void Read(const std::string& name) {
        const GuardResult outcome = RunGuarded(
            [&] { reader_ = std::make_unique<KernelReader>(file_.Extract(NeededRepresentations())); });
        if (!outcome.error.empty()) result_.error = name + ": " + outcome.error;
    }

    void Build() {
        shapes_.resize(model_.definitions.size());
        for (std::size_t i = 0; i < shapes_.size() && Go(kAfterReading, kAfterBuilding, i); ++i)
            Watch(i, [&] { BuildDefinition(i); });
    }

    void Triangulate(const Tessellation& tessellation) {
        FaceColours faces;
        Watch(0, [&] { faces = reader_->ColoursOfFaces(colours_); });
        for (std::size_t i = 0; i < shapes_.size() && Go(kAfterBuilding, 1, i); ++i) {
            if (shapes_[i].empty()) continue;
            MeshData mesh;
            Watch(i, [&] { mesh = MeshShapes(shapes_[i], faces, tessellation); });
            shapes_[i].clear();
            if (!mesh.IsEmpty()) take_(i, std::move(mesh));
        }
    }

    bool Go(double from, double to, std::size_t done) {
        const double share =
            shapes_.empty() ? 1 : static_cast<double>(done) / static_cast<double>(shapes_.size());
        if (progress_ && !progress_(from + (to - from) * share)) result_.isCancelled = true;
        return result_.Ok();
    }

private:
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
                placed.shape = reader_->BuildItem(piece.representation, item);
                placed.toDefinition = piece.toDefinition;
                if (colour != colours_.end()) placed.colour = colour->second;
                if (!placed.shape.IsNull()) shapes_[index].push_back(placed);
            }
        }
    }

    /// A definition that the kernel fails on is told and left without what was not finished.
    template <class Work>
    void Watch(std::size_t index, Work&& work) {
        const GuardResult outcome = RunGuarded(work);
        hasFaulted_ = hasFaulted_ || outcome.isFault;
        if (!outcome.error.empty())
            result_.warnings.push_back("\"" + model_.definitions[index].name + "\": " + outcome.error);
    }

    const StepModel& model_;
    const ColourTable& colours_;
    const ExchangeFile& file_;
    const MeshSink& take_;
    const ProgressSink& progress_;
    GeometryResult& result_;
    std::unique_ptr<KernelReader> reader_;
    std::vector<std::vector<PlacedShape>> shapes_;
    bool hasFaulted_ = false;
};

bool HasShapes(const StepModel& model) {
    return std::any_of(model.definitions.begin(), model.definitions.end(),
                       [](const Definition& definition) { return definition.HasOwnGeometry(); });
}

}  // namespace

GeometryResult ReadGeometry(const StructureResult& structure, const Tessellation& tessellation,
                            const MeshSink& take, const ProgressSink& progress) {
    GeometryResult result;
    if (!structure.file || !HasShapes(structure.model)) return result;
    const std::lock_guard lock(kernelMutex);
    const QuietKernel quiet;
    GeometryRun run(structure, take, progress, result);
    run.Read(structure.name);
    if (result.Ok() && run.Go(kAfterReading, kAfterReading, 0)) run.Build();
    if (result.Ok()) run.Triangulate(tessellation);
    return result;
}

}  // namespace qn::step

#include "importers/step/kernel/kernel_reader.h"

#include "importers/step/part21_error.h"

#include <IFSelect_ReturnStatus.hxx>
#include <Interface_HGraph.hxx>
#include <StepData_StepModel.hxx>
#include <StepRepr_Representation.hxx>
#include <TopExp_Explorer.hxx>
#include <Transfer_Binder.hxx>
#include <TransferBRep.hxx>
#include <XSControl_WorkSession.hxx>

#include <algorithm>
#include <sstream>

namespace qn::step {
namespace {

struct ColouredShape {
    TopAbs_ShapeEnum kind;
    EntityId entity;
    TopoDS_Shape shape;
    Colour colour;
};

constexpr double kMillimetre = 1;  ///< the kernel's unit of length

}  // namespace

KernelReader::KernelReader(const std::string& text) : actor_(new STEPControl_ActorRead) {
    std::istringstream in(text);
    if (reader_.ReadStream("shapes", in) != IFSelect_RetDone)
        throw ReadFailure("the modelling kernel cannot read the shapes");
    reader_.SetSystemLengthUnit(kMillimetre);
    const Handle(StepData_StepModel) model = reader_.StepModel();
    model->SetLocalLengthUnit(kMillimetre);
    process_ = new Transfer_TransientProcess(model->NbEntities());
    process_->SetModel(model);
    process_->SetGraph(reader_.WS()->HGraph());
    process_->SetActor(actor_);
    process_->SetErrorHandle(true);
    process_->SetTraceLevel(0);
    numbers_.reserve(static_cast<std::size_t>(model->NbEntities()));
    for (int i = 1; i <= model->NbEntities(); ++i)
        numbers_.emplace(static_cast<EntityId>(model->IdentLabel(model->Value(i))), i);
}

Handle(Standard_Transient) KernelReader::Entity(EntityId id) const {
    const auto found = numbers_.find(id);
    return found == numbers_.end() ? Handle(Standard_Transient)() : reader_.StepModel()->Value(found->second);
}

TopoDS_Shape KernelReader::BuildItem(EntityId representation, EntityId item,
                                     const Message_ProgressRange& range) {
    const Handle(Standard_Transient) entity = Entity(item);
    if (entity.IsNull()) return {};
    if (unitsOf_ != representation)
        actor_->PrepareUnits(Handle(StepRepr_Representation)::DownCast(Entity(representation)), process_);
    unitsOf_ = representation;
    if (process_->IsBound(entity)) return TransferBRep::ShapeResult(process_, entity);
    const Handle(Transfer_Binder) binder = actor_->TransferShape(entity, process_, true, false, range);
    return binder.IsNull() ? TopoDS_Shape() : TransferBRep::ShapeResult(binder);
}

FaceColours KernelReader::ColoursOfFaces(const ColourTable& colours) const {
    std::vector<ColouredShape> shapes;
    for (const auto& [id, colour] : colours) {
        const Handle(Standard_Transient) entity = Entity(id);
        if (entity.IsNull()) continue;
        const TopoDS_Shape shape = TransferBRep::ShapeResult(process_, entity);
        if (!shape.IsNull() && shape.ShapeType() <= TopAbs_FACE)
            shapes.push_back({shape.ShapeType(), id, shape, colour});
    }
    // Large before small, so that the small one has the last word.
    std::sort(shapes.begin(), shapes.end(), [](const ColouredShape& a, const ColouredShape& b) {
        return a.kind != b.kind ? a.kind < b.kind : a.entity < b.entity;
    });
    FaceColours result;
    for (const ColouredShape& shape : shapes)
        for (TopExp_Explorer at(shape.shape, TopAbs_FACE); at.More(); at.Next())
            result[at.Current().TShape().get()] = shape.colour;
    return result;
}

}  // namespace qn::step

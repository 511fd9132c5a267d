#pragma once

#include "importers/step/kernel/kernel_mesher.h"
#include "importers/step/step_colours.h"

#include <STEPControl_ActorRead.hxx>
#include <STEPControl_Reader.hxx>
#include <Transfer_TransientProcess.hxx>

#include <string>
#include <unordered_map>

namespace qn::step {

/// The modelling kernel's view of one file, by the file's own entity numbers. Shapes that share
/// entities share their faces.
class KernelReader {
public:
    /// Takes the text of an exchange file. Throws ReadFailure if the kernel cannot read it.
    explicit KernelReader(const std::string& text);

    /// The shape of one item of a representation in millimetres; null if the kernel makes none.
    TopoDS_Shape BuildItem(EntityId representation, EntityId item, const Message_ProgressRange& range);

    /// Colours of the faces built so far. A face's own colour wins over that of its shell, and that
    /// over the solid's.
    FaceColours ColoursOfFaces(const ColourTable& colours) const;

private:
    Handle(Standard_Transient) Entity(EntityId id) const;

    STEPControl_Reader reader_;
    Handle(Transfer_TransientProcess) process_;
    Handle(STEPControl_ActorRead) actor_;
    std::unordered_map<EntityId, int> numbers_;  ///< of the kernel's model
    EntityId unitsOf_ = kNoEntity;
};

}  // namespace qn::step

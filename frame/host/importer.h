#pragma once

#include "frame/host/extension.h"

namespace qn {

class Context;

namespace k3 {
class Node;
class Scene;
}  // namespace k3

/// Keys of the load options (context parameter 0x9c, a map) that importers know.
namespace LoadOption {
inline constexpr const wchar_t* kStructureOnly = L"structure_only";  ///< bool: read no geometry
inline constexpr const wchar_t* kTolerance = L"tolerance";  ///< number, millimetres; 0 or missing: by size
inline constexpr const wchar_t* kAngle = L"angle";          ///< number, degrees between facets
}  // namespace LoadOption

/// Reads files of one format. An importer module stands in the module folder as a shared library with a text
/// file "NAME.importer" beside it, so that the engine knows its format without loading it:
///
///     key = qn.importer.step               class key to create
///     module = step_importer.so            file in the same folder
///     guid = 00000000-0000-0000-0000-000000000000
///     name = STEP
///     endings = .stp .step .p21            lower case
///     magic = ISO-10303-21;                text that stands in the first 1,024 bytes
///
/// The module registers its classes when its `K3DLLFunc` is called with `ModuleCode::kRegister`, and creates
/// them through `kCreate`.
class Importer : public Extension {
public:
    /// Reads `file` below `top`, an empty node that already has its place in the scene and the file's name.
    /// An importer that knows definitions and uses builds `Reference` and `Instance` objects by class key,
    /// registers them in a lookup table, gives `top` a hierarchy generator and leaves the generation of nodes
    /// to those who need them. An importer that knows only nodes makes nodes below `top`. Lengths become
    /// millimetres. Reports through the context: `Fail` with the cause, progress; stops soon after a
    /// cancellation. Gives kSuccess or a value below 1; the caller then removes `top`.
    virtual ResultEnum Import(const String& file, k3::Scene* scene, k3::Node* top, Context* context) = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::Importer");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<Importer, Extension>(this, wanted);
    }
};

/// Metadata group by which an importer marks a reference that is no definition of the file, but stands around
/// its roots (a file with several roots, or none): its children are the roots. Value: a map with "Container"
/// true.
inline constexpr const wchar_t* kFileGroup = L"$QN.FILE";
inline constexpr const wchar_t* kFileContainer = L"Container";
/// In the same group, on the root or container: "Y" if Y points up in the file. Missing: Z, or nothing that
/// is known.
inline constexpr const wchar_t* kFileUpAxis = L"UpAxis";
inline constexpr const wchar_t* kFileUpAxisY = L"Y";

}  // namespace qn

#pragma once

#include "frame/host/guid.h"
#include "frame/host/string.h"

namespace qn {

class Context;

namespace k3 {
class Node;
class Scene;
}  // namespace k3

/// Reads a file into the scene as one new top-level node with the name of the file without folder and ending;
/// borrowed. The importer's module is loaded only now. Null on failure or cancellation: then the scene is as
/// it was, and the context has the cause, which starts with the file as it was named. The flags are carried,
/// not interpreted; a null context serves, but nobody learns the cause.
k3::Node* ImportFile(k3::Scene* scene, const String& file, Context* context, unsigned flags,
                     const Guid& importer);

/// The first bytes of a file, at most `kProbeSize`; false, with the reason, if there is no such file to be
/// read.
bool ProbeFile(const String& file, std::string& head, String& reason);

}  // namespace qn

#pragma once

namespace qn {

class Interface;
class Params;
namespace xml {
class Element;
}

namespace graph {

/// Fills the arguments of a stored call by the description of the called class:
/// document / "Interface" / "Methods" / "Method" (id) / "Parameter" (id, name, type, perhaps default).
/// A parameter of type "scene" gets `scene`; one of type "string", "filename", "int" or "bool" gets what
/// `source` holds under its id, else its default as text, else an empty value. Other types are left alone.
/// Only the first method with the id counts. Without source, document, "Interface" or "Methods" nothing is
/// filled.
void FillArguments(Params& arguments, Params* source, xml::Element* document, int method, Interface* scene);

}  // namespace graph
}  // namespace qn

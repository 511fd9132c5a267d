#pragma once

#include "frame/host/matrix.h"
#include "frame/host/scene_document.h"
#include "frame/host/string.h"
#include "graph/instance.h"
#include "graph/lookup_table.h"
#include "graph/reference.h"

#include <cstdint>
#include <string>
#include <vector>

namespace assembly::tool {

/// Overrides of one occurrence that a stored selector carries.
struct Override {
    std::vector<qn::graph::Instance*>
        path;          ///< from the top instance or any below it; the last is the use itself
    std::string name;  ///< empty: not overridden
    bool moved = false;
    qn::Matrix4<double> local;  ///< node to parent in place of the use's own, if `moved`
};

/// One use of a definition.
struct Use {
    qn::graph::Instance* instance = nullptr;
    std::uint32_t definition = 0;  ///< index into `Structure::definitions`
    std::string name;              ///< UTF-8
    qn::Matrix4<double> local;     ///< child to parent, millimetres
    std::vector<Override> overrides;
};

/// What became of the file that a definition names.
enum class FileState : std::uint8_t { kNone, kNotRead, kRead, kMissing };

/// One definition with its uses of others.
struct Definition {
    qn::graph::Reference* reference = nullptr;
    std::string name;            ///< UTF-8
    std::uint32_t firstUse = 0;  ///< index into `Structure::uses`
    std::uint32_t useCount = 0;
    std::uint64_t usedBy = 0;       ///< uses of this definition in others
    std::uint64_t occurrences = 0;  ///< nodes of the expanded tree that show it
    std::uint64_t expanded = 0;     ///< nodes of its own expanded tree, itself included
    std::uint32_t depth = 0;        ///< levels of its own tree, itself included
    bool emptied = false;           ///< an assembly of which a filter left no use
    FileState fileState = FileState::kNone;
    std::string file;  ///< the file that it stands for, as it names it, with forward slashes; UTF-8
};

/// Whether the definition never had uses of others.
inline bool IsPart(const Definition& definition) {
    return definition.useCount == 0 && !definition.emptied;
}

/// Where a root stands in the scene.
struct Top {
    const qn::k3::Node* node = nullptr;  ///< the scene's child that shows it, alone or with others
    bool inContainer = false;            ///< the node stands around the roots and is none itself
};

/// The definition graph of a file: costs by definitions and uses, never by occurrences. Definitions stand in
/// the order in which a walk from the roots, parents first, meets them.
struct Structure {
    std::vector<Definition> definitions;
    std::vector<Use> uses;
    std::vector<std::uint32_t> order;  ///< definitions, users before used
    std::vector<Use> roots;            ///< top occurrences; `instance` may be null
    std::vector<Top> tops;             ///< of each root
    std::uint64_t occurrences = 0;
    std::uint64_t leafOccurrences = 0;
    std::uint64_t instances = 0;  ///< distinct uses below the roots
    std::uint32_t depth = 0;
    std::uint32_t widest = 0;                   ///< most children of one definition
    qn::Counted<qn::graph::LookupTable> table;  ///< keeps elements alive that were made from plain nodes
    std::vector<qn::Counted<qn::Interface>> sources;  ///< keep elements alive that came from other files
};

/// Reads the structure of everything that stands at the top of the scene. Elements are borrowed from it.
/// Fails with kUnreadable if a definition contains itself, with kLimit if there are more occurrences than 64
/// bits count.
Structure ReadStructure(qn::k3::Scene& scene, qn::Context& context);
/// Whether the definition only stands around the roots of a file.
bool IsContainer(const qn::graph::Reference& reference);

}  // namespace assembly::tool

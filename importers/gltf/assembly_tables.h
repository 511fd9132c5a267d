#pragma once

#include "frame/host/collections.h"
#include "importers/gltf/gltf_model.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qn::gltf {

/// A row of the table of uses. Borrowed from the model.
struct UseEntry {
    const VarMap* row = nullptr;
    std::uint32_t parent = kNone;  ///< definition; none for a root
    std::uint32_t definition = kNone;
    std::uint32_t firstNode = kNone;  ///< the first one that stands for it
    bool isOverridden = false;        ///< in some of its occurrences
};

struct DefinitionEntry {
    const VarMap* row = nullptr;
    std::uint32_t mesh = kNone;
    std::uint32_t firstUse = 0;  ///< in `AssemblyTables::children`
    std::uint32_t useCount = 0;
};

struct OverrideEntry {
    const VarMap* row = nullptr;
    std::uint32_t use = kNone;
    std::vector<std::uint32_t> path;
};

/// The tables that a file of our own carries, as far as they agree with themselves and with its nodes.
class AssemblyTables {
public:
    /// False if the file has none. Otherwise `Disagreement` tells whether they can be believed.
    bool Read(const Model& model);
    /// What is wrong; empty if the tables hold.
    const std::string& Disagreement() const { return disagreement_; }

    std::vector<DefinitionEntry> definitions;
    std::vector<UseEntry> uses;
    std::vector<OverrideEntry> overrides;
    std::vector<std::uint32_t> children;  ///< uses, those of one definition side by side, in order
    std::vector<std::uint32_t> roots;     ///< uses
    std::uint32_t container = kNone;
    std::uint32_t frame = kNone;  ///< node

private:
    bool ReadRows(const Model& model, const VarMap& tables);
    bool ReadDefinitions(const Model& model, const VarArray& rows);
    bool ReadUses(const VarArray& rows);
    bool ReadOverrides(const VarArray& rows);
    void SortUses();
    bool CheckNodes(const Model& model);
    bool Fail(const std::string& text);

    std::string disagreement_;
};

}  // namespace qn::gltf

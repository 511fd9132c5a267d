#pragma once

#include "tool/part_groups.h"
#include "tool/parts_options.h"

#include <functional>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace assembly::tool {

/// One line of a parts list, valid during the visit.
struct PartsRow {
    std::uint32_t level = 0;  ///< 0 for a top
    std::uint32_t definition = 0;
    std::uint64_t quantity = 1;  ///< within the parent; in a flat list within everything
    std::uint64_t total = 1;     ///< within everything
    std::span<const Use* const> uses;
    std::string_view name;  ///< of the one occurrence; empty in all other structures
};

/// The lines of a parts list. Quantities come from sums over definitions and uses; only the structure of
/// occurrences visits occurrences.
class PartsTable {
public:
    using Visit = std::function<bool(const PartsRow&)>;
    using Less = std::function<bool(const PartsRow&, const PartsRow&)>;

    /// Borrows the structure.
    PartsTable(const Structure& structure, const PartsOptions& options);

    /// Orders the components of each assembly; the structure of several levels alone.
    void SortSiblings(const Less& less);
    /// Calls `visit` for each line until it answers false; can be called again. Fails with kLimit if a
    /// quantity outgrows 64 bits.
    void Run(const Visit& visit);

private:
    /// Quantities by definition; variants of one definition that a filter made are one line.
    class Sums {
    public:
        explicit Sums(const Structure& structure) : structure_(structure) {}
        void Add(std::uint32_t definition, std::uint64_t quantity, std::span<const Use* const> uses);
        void Run(std::uint32_t level, const Visit& visit) const;

    private:
        struct Sum {
            std::uint32_t definition;
            std::uint64_t quantity;
            std::vector<const Use*> uses;
        };
        const Structure& structure_;
        std::vector<Sum> sums_;
        std::unordered_map<const qn::graph::Reference*, std::size_t> known_;
    };
    struct Level {
        std::span<const PartGroup> groups;
        std::size_t next = 0;
        std::uint64_t parents = 1;  // occurrences of the parent that the path stands for
    };
    void RunMulti(const Visit& visit);
    void RunOccurrences(const Visit& visit);
    void AddComponentsOfTops();
    void AddParts();
    void AddPartsDownTo(std::uint32_t level);

    const Structure& structure_;
    PartsOptions options_;
    std::optional<PartGroups> groups_;  // several levels and a single one
    std::optional<Sums> sums_;          // flat and a single level
};

}  // namespace assembly::tool

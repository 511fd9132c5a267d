#include "tests/importers/step_summary.h"

#include "importers/step/step_transform.h"
#include "tests/support/sha256.h"

#include <algorithm>
#include <array>
#include <map>
#include <set>

namespace {

using nlohmann::json;
using qn::step::Definition;
using qn::step::StepModel;
using qn::step::Transform;
using qn::step::Use;

constexpr std::size_t kMostPathsListed = 200;

struct Occurrence {
    std::size_t definition;
    Transform world;
    std::string path;
    int depth;
};

struct Expansion {
    std::vector<std::string> paths;
    std::map<std::string, std::array<double, 4>> sums;  ///< count, x, y, z
    int depth = 0;
};

Expansion Expand(const StepModel& model) {
    Expansion result;
    std::vector<Occurrence> open;
    for (const std::size_t root : model.roots)
        open.push_back({root, qn::step::kIdentity, model.definitions[root].name, 1});
    while (!open.empty()) {
        const Occurrence occurrence = std::move(open.back());
        open.pop_back();
        const Definition& definition = model.definitions[occurrence.definition];
        auto& sum = result.sums[definition.name];
        sum[0] += 1;
        for (std::size_t i = 0; i < 3; ++i)
            sum[i + 1] += occurrence.world[12 + i];
        result.depth = std::max(result.depth, occurrence.depth);
        for (const std::size_t index : definition.uses) {
            const Use& use = model.uses[index];
            open.push_back({use.child, qn::step::Then(use.toParent, occurrence.world),
                            occurrence.path + "/" + model.definitions[use.child].name, occurrence.depth + 1});
        }
        result.paths.push_back(occurrence.path);
    }
    std::sort(result.paths.begin(), result.paths.end());
    return result;
}

void AddUses(const StepModel& model, json& out) {
    std::map<std::pair<std::string, std::string>, int> uses;
    std::map<std::string, int> names;
    int designators = 0;
    int placed = 0;
    for (const Use& use : model.uses) {
        ++uses[{model.definitions[use.parent].name, model.definitions[use.child].name}];
        ++names[use.name];
        designators += !use.referenceDesignator.empty();
        placed += use.isPlaced;
    }
    out["uses"] = json::array();
    for (const auto& [pair, count] : uses)
        out["uses"].push_back({pair.first, pair.second, count});
    out["instances"] = model.uses.size();
    out["instance_names"] = names;
    out["reference_designators"] = designators;
    out["placed_instances"] = placed;
}

void AddDefinitions(const StepModel& model, json& out) {
    std::map<std::string, int> names;
    std::map<std::string, int> validation;
    std::vector<std::string> ownGeometry;
    std::vector<std::string> noGeometry;
    std::set<std::pair<std::string, std::string>> files;
    std::size_t assemblies = 0;
    std::size_t widest = 0;
    const auto count = [&](const std::vector<qn::step::Property>& properties) {
        for (const auto& property : properties)
            if (property.group.find("validation property") != std::string::npos) ++validation[property.group];
    };
    for (const Definition& definition : model.definitions) {
        ++names[definition.name];
        assemblies += definition.IsAssembly();
        widest = std::max(widest, definition.uses.size());
        if (definition.IsAssembly() && definition.HasOwnGeometry()) ownGeometry.push_back(definition.name);
        if (!definition.IsAssembly() && !definition.HasOwnGeometry()) noGeometry.push_back(definition.name);
        for (const std::string& file : definition.externalFiles)
            files.emplace(definition.name, file);
        count(definition.properties);
    }
    for (const Use& use : model.uses)
        count(use.properties);
    std::sort(ownGeometry.begin(), ownGeometry.end());
    std::sort(noGeometry.begin(), noGeometry.end());
    out["definitions"] = model.definitions.size();
    out["assembly_definitions"] = assemblies;
    out["part_definitions"] = model.definitions.size() - assemblies;
    out["max_children"] = widest;
    out["definition_names"] = names;
    out["assemblies_with_own_geometry"] = ownGeometry;
    out["parts_without_geometry"] = noGeometry;
    out["external_files"] = files;
    out["validation_properties"] = validation;
    out["schema"] = model.schemas;
}

}  // namespace

json SummaryOf(const StepModel& model) {
    json out = json::object();
    AddDefinitions(model, out);
    AddUses(model, out);
    const Expansion expansion = Expand(model);
    std::vector<std::string> roots;
    for (const std::size_t root : model.roots)
        roots.push_back(model.definitions[root].name);
    std::sort(roots.begin(), roots.end());
    out["roots"] = roots.size();
    out["root_names"] = roots;
    out["occurrences"] = expansion.paths.size();
    out["depth"] = expansion.depth;
    out["paths_sha256"] = qn::test::Sha256OfLines(expansion.paths);
    if (expansion.paths.size() <= kMostPathsListed) out["paths"] = expansion.paths;
    for (const auto& [name, sum] : expansion.sums) {
        out["occurrences_by_definition_name"][name] = static_cast<int>(sum[0]);
        out["world_translations_mm"]["sum_by_name"][name] = sum;
    }
    return out;
}

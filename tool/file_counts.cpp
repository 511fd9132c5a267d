#include "tool/file_counts.h"

#include "tool/structure_counts.h"

#include <unordered_map>

namespace assembly::tool {
namespace {

std::vector<FileLink> LinksOf(const NamedFile& file) {
    std::vector<FileLink> links;
    std::unordered_map<std::uint32_t, std::size_t> known;
    std::unordered_map<std::uint32_t, std::uint64_t> roots;
    for (const Use& root : file.structure.roots)
        ++roots[root.definition];
    for (const FileNaming& naming : file.namings) {
        const auto [entry, isNew] = known.emplace(naming.file, links.size());
        if (isNew) links.push_back({naming.file, naming.name});
        FileLink& link = links[entry->second];
        ++link.definitions;
        link.uses += file.structure.definitions[naming.definition].usedBy;
        if (const auto root = roots.find(naming.definition); root != roots.end()) link.uses += root->second;
    }
    return links;
}

/// Naming files before named ones; no file names itself.
std::vector<std::uint32_t> SortFiles(const NamedFiles& files) {
    std::vector<std::uint32_t> pending(files.files.size());
    for (const NamedFile& file : files.files)
        for (const FileNaming& naming : file.namings)
            ++pending[naming.file];
    std::vector<std::uint32_t> order{0};
    for (std::size_t at = 0; at < order.size(); ++at)
        for (const FileNaming& naming : files.files[order[at]].namings)
            if (--pending[naming.file] == 0) order.push_back(naming.file);
    return order;
}

}  // namespace

FileCounts CountFiles(const NamedFiles& files) {
    FileCounts counts;
    for (const NamedFile& file : files.files)
        counts.links.push_back(LinksOf(file));
    counts.uses.resize(files.files.size());
    counts.occurrences.resize(files.files.size());
    counts.occurrences[0] = 1;
    for (const std::uint32_t at : SortFiles(files)) {
        for (const FileLink& link : counts.links[at])
            counts.uses[link.file] = AddCounts(counts.uses[link.file], link.uses);
        for (const FileNaming& naming : files.files[at].namings) {
            const std::uint64_t here = files.files[at].structure.definitions[naming.definition].occurrences;
            std::uint64_t& sum = counts.occurrences[naming.file];
            sum = AddCounts(sum, MultiplyCounts(here, counts.occurrences[at]));
        }
    }
    return counts;
}

}  // namespace assembly::tool

#include "tool/occurrence_path.h"

#include "graph/node_content.h"
#include "tool/element_names.h"
#include "tool/failure.h"

#include <algorithm>
#include <charconv>
#include <optional>

namespace assembly::tool {
namespace {

using qn::graph::Instance;
using qn::graph::Reference;
using qn::k3::Node;

const std::string& NameOf(const Structure& structure, const Use& use) {
    static const std::string unnamed = kUnnamed;
    if (!use.name.empty()) return use.name;
    const std::string& ofDefinition = structure.definitions[use.definition].name;
    return ofDefinition.empty() ? unnamed : ofDefinition;
}

std::string Escaped(const std::string& name) {
    std::string text;
    for (const char letter : name) {
        if (letter == '/' || letter == '[' || letter == '\\') text += '\\';
        text += letter;
    }
    return text;
}

/// One part of a path as read.
struct Part {
    std::string name;
    std::optional<std::size_t> number;  // from 1
};

[[noreturn]] void FailOnPath(std::string_view path, const std::string& cause) {
    throw Failure(ExitCode::kUsage, "the path \"" + std::string(path) + "\" " + cause);
}

std::size_t NumberOf(std::string_view path, std::string_view digits) {
    std::size_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (error != std::errc() || end != digits.data() + digits.size() || number == 0)
        FailOnPath(path, "has [" + std::string(digits) + "] where a number from 1 is expected");
    return number;
}

std::vector<Part> PartsOf(std::string_view path) {
    std::vector<Part> parts(1);
    for (std::size_t i = 0; i < path.size(); ++i) {
        Part& part = parts.back();
        if (path[i] == '/') {
            parts.emplace_back();
        } else if (part.number) {
            FailOnPath(path, "goes on after a number");
        } else if (path[i] == '[') {
            const std::size_t end = path.find(']', i);
            if (end == std::string_view::npos) FailOnPath(path, "has a [ without ]");
            part.number = NumberOf(path, path.substr(i + 1, end - i - 1));
            i = end;
        } else {
            if (path[i] == '\\' && i + 1 < path.size()) ++i;
            part.name += path[i];
        }
    }
    return parts;
}

/// The one of the uses that a part means; fails if that is none or several.
template <class NameOfUse>
const Use* Choose(const Use* first, std::size_t count, const Part& part, std::string_view path,
                  NameOfUse&& nameOf) {
    std::size_t met = 0;
    const Use* found = nullptr;
    for (std::size_t i = 0; i < count; ++i) {
        if (nameOf(first[i]) != part.name) continue;
        ++met;
        if (met == part.number.value_or(1)) found = first + i;
    }
    if (met > 1 && !part.number)
        FailOnPath(path, "is not unique: " + std::to_string(met) + " occurrences go by \"" + part.name +
                             "\" there; add [1] to [" + std::to_string(met) + "]");
    if (met > 0 && !found)
        FailOnPath(path, "asks for number " + std::to_string(*part.number) + " of " + std::to_string(met) +
                             " that go by \"" + part.name + "\"");
    return found;
}

/// What the node shows: what its instance uses, or what its generator makes nodes from.
const Reference* DefinitionOf(const Node& node) {
    if (const Instance* instance = qn::graph::CarriedInstance(node)) return instance->GetReference();
    return qn::graph::GeneratedReference(node);
}

std::string NameOf(const Node& node) {
    std::string name = NameOfElement(qn::graph::CarriedInstance(node));
    if (name.empty()) name = NameOfElement(DefinitionOf(node));
    if (name.empty()) name = node.GetName().ToUtf8();
    return name.empty() ? kUnnamed : name;
}

/// The node above that has a part in the path; null for the scene and for the root of a structure, both of
/// which have none.
const Node* Above(const Node& node) {
    const Node* parent = node.GetParent();
    return parent && parent->GetParent() ? parent : nullptr;
}

/// Whether the node only stands around the roots of a file.
bool IsContainerNode(const Node& node) {
    const Reference* definition = DefinitionOf(node);
    return definition && IsContainer(*definition);
}

}  // namespace

std::vector<std::string> PathSegments(const std::vector<std::string>& names) {
    std::unordered_map<std::string_view, std::size_t> counts, given;
    for (const std::string& name : names)
        ++counts[name];
    std::vector<std::string> segments;
    segments.reserve(names.size());
    for (const std::string& name : names) {
        std::string segment = Escaped(name);
        if (counts[name] > 1) segment += "[" + std::to_string(++given[name]) + "]";
        segments.push_back(std::move(segment));
    }
    return segments;
}

OccurrencePaths::OccurrencePaths(const Structure& structure)
    : structure_(structure), segments_(structure.uses.size()) {
    std::vector<std::string> names;
    for (const Use& root : structure.roots)
        names.push_back(NameOf(structure, root));
    roots_ = PathSegments(names);
    for (std::uint32_t i = 0; i < structure.definitions.size(); ++i)
        if (structure.definitions[i].useCount > 0) owners_.push_back(i);
}

OccurrencePaths::Siblings OccurrencePaths::RootUses() const {
    return {structure_.roots.data(), structure_.roots.size()};
}

OccurrencePaths::Siblings OccurrencePaths::UsesOf(std::uint32_t definition) const {
    const Definition& parent = structure_.definitions[definition];
    return {structure_.uses.data() + parent.firstUse, parent.useCount};
}

std::uint32_t OccurrencePaths::OwnerOf(std::size_t use) const {
    const auto next = std::upper_bound(owners_.begin(), owners_.end(), use, [&](std::size_t at, auto owner) {
        return at < structure_.definitions[owner].firstUse;
    });
    return *(next - 1);
}

const std::string& OccurrencePaths::SegmentOf(const Use& use) {
    const Siblings roots = RootUses();
    if (&use >= roots.first && &use < roots.first + roots.count)
        return roots_[static_cast<std::size_t>(&use - roots.first)];
    const auto index = static_cast<std::size_t>(&use - structure_.uses.data());
    if (!segments_[index].empty()) return segments_[index];
    const Siblings siblings = UsesOf(OwnerOf(index));
    std::vector<std::string> names;
    names.reserve(siblings.count);
    for (std::size_t i = 0; i < siblings.count; ++i)
        names.push_back(NameOf(structure_, siblings.first[i]));
    std::vector<std::string> segments = PathSegments(names);
    std::move(segments.begin(), segments.end(),
              segments_.begin() + (siblings.first - structure_.uses.data()));
    return segments_[index];
}

std::string OccurrencePaths::PathOf(const std::vector<const Use*>& uses) {
    std::string path;
    for (const Use* use : uses)
        path += (path.empty() ? "" : "/") + SegmentOf(*use);
    return path;
}

std::vector<const Use*> OccurrencePaths::Find(std::string_view path) const {
    std::vector<const Use*> found;
    Siblings siblings = RootUses();
    for (const Part& part : PartsOf(path)) {
        const auto ownName = [&](const Use& use) { return std::string_view(NameOf(structure_, use)); };
        const auto definitionName = [&](const Use& use) {
            return std::string_view(structure_.definitions[use.definition].name);
        };
        const Use* use = Choose(siblings.first, siblings.count, part, path, ownName);
        if (!use) use = Choose(siblings.first, siblings.count, part, path, definitionName);
        if (!use) FailOnPath(path, "leads nowhere: nothing goes by \"" + part.name + "\" there");
        found.push_back(use);
        siblings = UsesOf(use->definition);
    }
    return found;
}

const std::string& PathOfWalk::At(const Occurrence& occurrence) {
    ends_.resize(occurrence.level);
    text_.resize(occurrence.level > 1 ? ends_[occurrence.level - 2] : 0);
    if (occurrence.level > 1) text_ += '/';
    text_ += paths_.SegmentOf(*occurrence.use);
    ends_.back() = text_.size();
    return text_;
}

std::string NodePaths::PathOf(const Node& node) {
    std::vector<const std::string*> segments;
    for (const Node* at = &node; at; at = Above(*at)) {
        if (at != &node && !Above(*at) && IsContainerNode(*at)) break;
        const Node* parent = at->GetParent();
        if (!segments_.contains(at)) {
            std::vector<std::string> names;
            const Node* first = parent ? parent->GetFirstChild() : at;
            for (const Node* sibling = first; sibling; sibling = sibling->GetNextSibling())
                names.push_back(NameOf(*sibling));
            std::vector<std::string> all = PathSegments(names);
            std::size_t place = 0;
            for (const Node* sibling = first; sibling; sibling = sibling->GetNextSibling())
                segments_[sibling] = std::move(all[place++]);
        }
        segments.push_back(&segments_[at]);
    }
    std::string path;
    for (auto segment = segments.rbegin(); segment != segments.rend(); ++segment)
        path += (path.empty() ? "" : "/") + **segment;
    return path;
}

}  // namespace assembly::tool

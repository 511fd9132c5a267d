#include "importers/step/step_colours.h"

#include <algorithm>
#include <optional>

namespace qn::step {
namespace {

constexpr struct {
    std::string_view name;
    Colour colour;
} kNamedColours[] = {
    {"red", {1, 0, 0, 1}},  {"green", {0, 1, 0, 1}},   {"blue", {0, 0, 1, 1}},  {"yellow", {1, 1, 0, 1}},
    {"cyan", {0, 1, 1, 1}}, {"magenta", {1, 0, 1, 1}}, {"white", {1, 1, 1, 1}}, {"black", {0, 0, 0, 1}},
};

/// Styles are nested some ten levels deep at the most; deeper ones come from a ring.
constexpr int kDeepestStyle = 16;

class StyleReader {
public:
    explicit StyleReader(const ExchangeFile& file) : file_(file) {}

    /// The first surface colour that a style leads to, remembered for each entity.
    std::optional<Colour> ColourOf(EntityId style, int depth = 0) {
        if (style == kNoEntity || depth > kDeepestStyle) return std::nullopt;
        const auto known = known_.find(style);
        if (known != known_.end()) return known->second;
        const auto colour = Read(file_.Get(style), depth);
        known_.emplace(style, colour);
        return colour;
    }

private:
    std::optional<Colour> Read(const Record& record, int depth) {
        if (record.Is("COLOUR_RGB")) return ReadRgb(record);
        if (const Params* named = FindNamed(record)) return ReadNamed(*named);
        for (const auto& [keyword, index] : kWay)
            if (const Params* params = record.Find(keyword)) return Follow(record, *params, index, depth);
        return std::nullopt;
    }

    /// From the style of an item down to its surface colour: which attribute leads on.
    struct Way {
        std::string_view keyword;
        std::size_t attribute;
    };
    static constexpr Way kWay[] = {
        {"PRESENTATION_STYLE_ASSIGNMENT", 0},
        {"PRESENTATION_STYLE_BY_CONTEXT", 0},
        {"SURFACE_STYLE_USAGE", 1},
        {"SURFACE_SIDE_STYLE", 1},
        {"SURFACE_STYLE_FILL_AREA", 0},
        {"FILL_AREA_STYLE", 1},
        {"FILL_AREA_STYLE_COLOUR", 1},
        {"SURFACE_STYLE_RENDERING", 1},
        {"SURFACE_STYLE_RENDERING_WITH_PROPERTIES", 1},
    };

    std::optional<Colour> Follow(const Record& record, const Params& params, std::size_t index, int depth) {
        auto colour = ColourOf(ReferenceAt(params, index), depth + 1);
        for (const Param& member : ListAt(params, index)) {
            const EntityId next = member.kind == ParamKind::kReference ? member.id : kNoEntity;
            const auto found = ColourOf(next, depth + 1);
            if (found && (!colour || found->alpha < 1)) colour = found;
        }
        if (colour && record.Is("SURFACE_STYLE_RENDERING_WITH_PROPERTIES"))
            colour->alpha = Alpha(ListAt(params, 2));
        return colour;
    }

    float Alpha(const Params& properties) const {
        for (std::size_t i = 0; i < properties.size(); ++i) {
            const Record property = file_.Get(ReferenceAt(properties, i));
            if (const Params* transparent = property.Find("SURFACE_STYLE_TRANSPARENT"))
                return Component(1 - NumberAt(*transparent, 0, 0));
        }
        return 1;
    }

    static float Component(double value) {
        return static_cast<float>(value >= 0 ? std::min(value, 1.0) : 0.0);
    }

    static Colour ReadRgb(const Record& record) {
        const Params rgb = record.Attributes({"COLOUR_SPECIFICATION", "COLOUR_RGB"});
        return {Component(NumberAt(rgb, 1, 0)), Component(NumberAt(rgb, 2, 0)),
                Component(NumberAt(rgb, 3, 0)), 1};
    }

    static const Params* FindNamed(const Record& record) {
        if (const Params* item = record.Find("PRE_DEFINED_ITEM")) return item;
        const Params* drawn = record.Find("DRAUGHTING_PRE_DEFINED_COLOUR");
        return drawn ? drawn : record.Find("PRE_DEFINED_COLOUR");
    }

    static std::optional<Colour> ReadNamed(const Params& params) {
        const std::string name = TextAt(params, 0);
        for (const auto& row : kNamedColours)
            if (row.name == name) return row.colour;
        return std::nullopt;
    }

    const ExchangeFile& file_;
    std::unordered_map<EntityId, std::optional<Colour>> known_;
};

}  // namespace

ColourTable ReadColours(const ExchangeFile& file) {
    ColourTable colours;
    StyleReader styles(file);
    for (const EntityId id : file.OfKind(EntityKind::kStyledItem)) {
        const Record record = file.Get(id);
        const Params attributes =
            record.Attributes({"REPRESENTATION_ITEM", "STYLED_ITEM", "OVER_RIDING_STYLED_ITEM"});
        const Params& list = ListAt(attributes, 1);
        for (std::size_t i = 0; i < list.size(); ++i) {
            const auto colour = styles.ColourOf(ReferenceAt(list, i));
            if (!colour) continue;
            const EntityId item = ReferenceAt(attributes, 2);
            if (record.Is("OVER_RIDING_STYLED_ITEM"))
                colours[item] = *colour;
            else
                colours.emplace(item, *colour);
            break;
        }
    }
    return colours;
}

void ApplyColours(const ColourTable& colours, StepModel& model) {
    for (Definition& definition : model.definitions) {
        const auto add = [&](EntityId entity) {
            const auto found = colours.find(entity);
            auto& own = definition.colours;
            if (found != colours.end() && std::find(own.begin(), own.end(), found->second) == own.end())
                own.push_back(found->second);
        };
        for (const ShapePiece& piece : definition.shapes) {
            add(piece.representation);
            for (const EntityId item : piece.items)
                add(item);
        }
    }
}

}  // namespace qn::step

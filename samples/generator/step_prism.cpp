#include "samples/generator/step_writer.h"

#include <cmath>

namespace assembly::samples {
namespace {

std::string Ref(Entity entity) {
    return "#" + std::to_string(entity);
}

Point Direction(const Point& from, const Point& to) {
    const Point d{to[0] - from[0], to[1] - from[1], to[2] - from[2]};
    const double length = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
    const auto rounded = [length](double value) { return std::round(value / length * 1e9) / 1e9; };
    return {rounded(d[0]), rounded(d[1]), rounded(d[2])};
}

}  // namespace

Entity StepWriter::AddFace(const std::vector<std::pair<Entity, bool>>& edges, Entity plane) {
    std::string list;
    for (const auto& [edge, forward] : edges) {
        const Entity oriented = Add("ORIENTED_EDGE('',*,*," + Ref(edge) + (forward ? ",.T.)" : ",.F.)"));
        list += (list.empty() ? "" : ",") + Ref(oriented);
    }
    const Entity loop = Add("EDGE_LOOP('',(" + list + "))");
    const Entity bound = Add("FACE_OUTER_BOUND(''," + Ref(loop) + ",.T.)");
    const Entity surface = Add("PLANE(''," + Ref(plane) + ")");
    return Add("ADVANCED_FACE('',(" + Ref(bound) + ")," + Ref(surface) + ",.T.)");
}

Entity StepWriter::AddPrism(const std::vector<std::array<double, 2>>& outline, double height) {
    const std::size_t n = outline.size();
    const auto corner = [&](std::size_t i, bool top) {
        return Point{outline[i % n][0], outline[i % n][1], top ? height : 0};
    };
    std::vector<Entity> bottomVertex, topVertex, bottomEdge, topEdge, sideEdge;
    for (std::size_t i = 0; i < n; ++i) {
        bottomVertex.push_back(Add("VERTEX_POINT(''," + Ref(AddPoint(corner(i, false))) + ")"));
        topVertex.push_back(Add("VERTEX_POINT(''," + Ref(AddPoint(corner(i, true))) + ")"));
    }
    const auto edge = [&](const Point& from, const Point& to, Entity first, Entity second) {
        const Entity start = AddPoint(from);
        const Entity vector = Add("VECTOR(''," + Ref(AddDirection(Direction(from, to))) + ",1.)");
        const Entity line = Add("LINE(''," + Ref(start) + "," + Ref(vector) + ")");
        return Add("EDGE_CURVE(''," + Ref(first) + "," + Ref(second) + "," + Ref(line) + ",.T.)");
    };
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t next = (i + 1) % n;
        bottomEdge.push_back(
            edge(corner(i, false), corner(next, false), bottomVertex[i], bottomVertex[next]));
        topEdge.push_back(edge(corner(i, true), corner(next, true), topVertex[i], topVertex[next]));
        sideEdge.push_back(edge(corner(i, false), corner(i, true), bottomVertex[i], topVertex[i]));
    }
    std::string faces;
    const auto keep = [&faces](Entity face) { faces += (faces.empty() ? "" : ",") + Ref(face); };
    std::vector<std::pair<Entity, bool>> bottom, top;
    for (std::size_t i = 0; i < n; ++i) {
        const std::size_t next = (i + 1) % n;
        const Point along = Direction(corner(i, false), corner(next, false));
        keep(AddFace(
            {{bottomEdge[i], true}, {sideEdge[next], true}, {topEdge[i], false}, {sideEdge[i], false}},
            AddPlacement(corner(i, false), {along[1], -along[0], 0}, along)));
        bottom.insert(bottom.begin(), {bottomEdge[i], false});
        top.push_back({topEdge[i], true});
    }
    keep(AddFace(bottom, AddPlacement({0, 0, 0}, {0, 0, -1}, {1, 0, 0})));
    keep(AddFace(top, AddPlacement({0, 0, height}, {0, 0, 1}, {1, 0, 0})));
    const Entity shell = Add("CLOSED_SHELL('',(" + faces + "))");
    return Add("MANIFOLD_SOLID_BREP(''," + Ref(shell) + ")");
}

}  // namespace assembly::samples

#include "frame/host/node.h"

namespace qn::k3 {

bool Node::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_node") || ReferenceSource::IsTypeOf(name);
}

const ClassRecord& Node::StaticClass() {
    static const ClassRecord& record = InternClass("qn::k3::Node");
    return record;
}

void* Node::CastTo(const ClassRecord& wanted) {
    return CastThrough<Node, ReferenceSource>(this, wanted);
}

bool DetailMarkup::IsTypeOf(const char* name) const {
    return EqualKeys(name, "k3_detail_markup") || Node::IsTypeOf(name);
}

const ClassRecord& DetailMarkup::StaticClass() {
    static const ClassRecord& record = InternClass("qn::k3::DetailMarkup");
    return record;
}

void* DetailMarkup::CastTo(const ClassRecord& wanted) {
    return CastThrough<DetailMarkup, Node>(this, wanted);
}

const ClassRecord& Track::StaticClass() {
    static const ClassRecord& record = InternClass("qn::k3::Track");
    return record;
}

void* Track::CastTo(const ClassRecord& wanted) {
    return CastThrough<Track, ReferenceSource>(this, wanted);
}

}  // namespace qn::k3

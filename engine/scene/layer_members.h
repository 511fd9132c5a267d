#pragma once

#include "engine/scene/member_list.h"
#include "frame/host/layer.h"

namespace qn::k3 {

struct Layer::Members {
    MemberList list{PointerArray::Create()};
};

}  // namespace qn::k3

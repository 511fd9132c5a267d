#pragma once

#include "frame/host/api.h"

#include <string_view>

namespace qn {

/// Makes bytes that a module carries known under its handle, for `Stream::Create`; an equal name is replaced.
/// A module calls it when it registers. The bytes are copied.
void RegisterResource(ModuleHandle handle, const wchar_t* name, std::string_view bytes);

}  // namespace qn

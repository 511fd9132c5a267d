#pragma once

#include "frame/host/extension.h"

namespace qn {

/// The value that a parameter word stands for. Integers that fit 32 bits, with or without sign, become tag 1.
Var ValueOfWord(ParamWord word, k3_VALUETYPE type);
/// What `GetParam` answers for a stored value, null for none.
ParamWord WordOfValue(const Var* value, ParamWord fallback, k3_VALUETYPE type);

}  // namespace qn

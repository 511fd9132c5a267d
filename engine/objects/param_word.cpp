#include "engine/objects/param_word.h"

#include <limits>

namespace qn {
namespace {

Var IntegerOfWord(ParamWord word) {
    const auto wide = static_cast<std::int64_t>(word);
    const int narrow = static_cast<int>(word);
    const bool fits = wide == narrow || word <= std::numeric_limits<std::uint32_t>::max();
    return fits ? Var(narrow) : Var(wide);
}

/// A 64-bit parameter goes to where the fallback points; the answer is whether there was one.
ParamWord GiveInt64(const Var* value, ParamWord receiver) {
    std::int64_t wide = 0;
    if (!value || !value->copy_to(wide)) return 0;
    if (receiver) *reinterpret_cast<std::int64_t*>(receiver) = wide;
    return 1;
}

}  // namespace

Var ValueOfWord(ParamWord word, k3_VALUETYPE type) {
    switch (type) {
        case kValueInteger:
            return IntegerOfWord(word);
        case kValueObject:
            return Var(reinterpret_cast<Interface*>(word), 1);
        case kValueInt64:
            return Var(static_cast<std::int64_t>(word));
    }
    return Var();
}

ParamWord WordOfValue(const Var* value, ParamWord fallback, k3_VALUETYPE type) {
    switch (type) {
        case kValueInteger: {
            std::int64_t wide = 0;
            return value && value->copy_to(wide) ? static_cast<ParamWord>(wide) : fallback;
        }
        case kValueObject:
            return value ? reinterpret_cast<ParamWord>(value->ToInterface()) : 0;
        case kValueInt64:
            return GiveInt64(value, fallback);
    }
    return 0;
}

}  // namespace qn

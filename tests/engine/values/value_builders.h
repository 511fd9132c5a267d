#pragma once

#include "frame/host/collections.h"
#include "frame/host/var.h"

#include <cmath>
#include <initializer_list>
#include <random>
#include <utility>

namespace qn::test {

inline Var ArrayOf(std::initializer_list<Var> values) {
    Var result;
    result.InitArray(0);
    for (const Var& value : values)
        result.At(result.size()) = value;
    return result;
}

inline Var MapOf(std::initializer_list<std::pair<Var, Var>> rows) {
    Var result;
    result.InitMap();
    for (const auto& [key, value] : rows)
        result.At(key) = value;
    return result;
}

/// A random value of any kind but objects, containers at most `depth` deep. Small ranges, so that equals are
/// met.
inline Var RandomValue(std::mt19937& random, int depth) {
    static const wchar_t* const kTexts[] = {L"", L"a", L"b", L"ab", L"\xe000", L"\U0001F600"};
    switch (random() % (depth > 0 ? 10 : 8)) {
        case 0:
            return Var();
        case 1:
            return Var(random() % 2 == 0);
        case 2:
            return Var(static_cast<int>(random() % 3));
        case 3:
            return Var(static_cast<std::int64_t>(random() % 3));
        case 4:
            return Var(static_cast<float>(random() % 6) / 2);
        case 5:
            return Var(random() % 9 ? static_cast<double>(random() % 6) / 2 : std::nan(""));
        case 6:
            return Var(kTexts[random() % 6]);
        case 7:
            if (random() % 2) return Var::Block("ab", random() % 3);
            return Var(Matrix4<double>::Translation(random() % 2, 0, 0));
        case 8: {
            Var array = ArrayOf({});
            for (unsigned n = random() % 3; n > 0; --n)
                array.At(array.size()) = RandomValue(random, depth - 1);
            return array;
        }
        default: {
            Var map = MapOf({});
            for (unsigned n = random() % 3; n > 0; --n)
                map.At(RandomValue(random, depth - 1)) = RandomValue(random, depth - 1);
            return map;
        }
    }
}

}  // namespace qn::test

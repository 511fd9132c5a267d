#include "operations/generated_id.h"

#include "frame/host/guid.h"

#include <iterator>

namespace qn::graph {
namespace {

constexpr wchar_t kDigits[] = L"0123456789abcdef";
// One word of four bytes and two of two bytes, each with its low byte first in memory, then eight bytes.
constexpr int kByteOrder[] = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};

}  // namespace

String GenerateId(const IdFrame& frame) {
    const Guid id = Guid::Create();
    wchar_t digits[2 * std::size(kByteOrder)];
    wchar_t* next = digits;
    for (const int place : kByteOrder) {
        const auto byte = id.Bytes()[static_cast<std::size_t>(place)];
        *next++ = kDigits[byte >> 4];
        *next++ = kDigits[byte & 0xf];
    }
    std::wstring text(frame.prefix.View());
    text.append(digits, std::size(digits)).append(frame.suffix.View());
    return String(text);
}

}  // namespace qn::graph

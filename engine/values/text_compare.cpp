#include "frame/host/string.h"

#include <algorithm>

namespace qn {
namespace {

constexpr std::uint32_t kFirstPair = 0x10000;

/// Walks a wide text as UTF-16 code units; a character above U+FFFF gives two.
class CodeUnits {
public:
    explicit CodeUnits(std::wstring_view text) : text_(text) {}

    /// The next unit, or -1 at the end.
    int Next() noexcept {
        if (pending_) {
            const int unit = pending_;
            pending_ = 0;
            return unit;
        }
        if (at_ == text_.size()) return -1;
        const auto letter = static_cast<std::uint32_t>(text_[at_++]);
        if (letter < kFirstPair) return static_cast<int>(letter);
        const std::uint32_t offset = letter - kFirstPair;
        pending_ = static_cast<int>(0xdc00 + (offset & 0x3ff));
        return static_cast<int>(0xd800 + (offset >> 10));
    }

private:
    std::wstring_view text_;
    std::size_t at_ = 0;
    int pending_ = 0;
};

int CompareUnits(std::wstring_view left, std::wstring_view right) noexcept {
    CodeUnits leftUnits(left), rightUnits(right);
    for (;;) {
        const int leftUnit = leftUnits.Next(), rightUnit = rightUnits.Next();
        if (leftUnit != rightUnit) return leftUnit < rightUnit ? -1 : 1;
        // Both ended: two lone surrogates on one side met one character on the other.
        if (leftUnit < 0) return left.size() < right.size() ? -1 : 1;
    }
}

}  // namespace

int CompareTexts(std::wstring_view left, std::wstring_view right) noexcept {
    const std::size_t common = std::min(left.size(), right.size());
    const auto [leftEnd, rightEnd] = std::mismatch(left.begin(), left.begin() + common, right.begin());
    const std::size_t same = static_cast<std::size_t>(leftEnd - left.begin());
    if (same == common) return left.size() == right.size() ? 0 : left.size() < right.size() ? -1 : 1;
    const auto leftLetter = static_cast<std::uint32_t>(*leftEnd),
               rightLetter = static_cast<std::uint32_t>(*rightEnd);
    if ((leftLetter < kFirstPair) == (rightLetter < kFirstPair)) return leftLetter < rightLetter ? -1 : 1;
    return CompareUnits(left.substr(same), right.substr(same));
}

}  // namespace qn

#pragma once

#include "exchange/json_writer.h"
#include "exchange/limits.h"
#include "exchange/text_blobs.h"
#include "frame/host/var.h"

#include <cstdint>

namespace qn::exchange {

/// Writes host values as JSON: texts, numbers, bools, arrays; maps become objects whose keys are the texts of
/// theirs (a "#" stands in front of a key that is no text or begins with "#"); a matrix is its 16 numbers,
/// row by row; opaque bytes and objects are named, not written. A container inside itself becomes null.
class ValueWriter {
public:
    /// Long texts go to `blobs`; without it they stay in place. Both are borrowed.
    ValueWriter(JsonWriter& json, TextBlobs* blobs, std::uint64_t mostValues = exchange_limits::kMostValues)
        : json_(json), blobs_(blobs), left_(mostValues) {}

    void Write(const Var& value);
    /// Writes the field unless the value is empty.
    void WriteField(const char* key, const Var& value);
    /// False once more values were asked for than an export may have; the rest is written as null.
    bool IsWithinLimit() const { return left_ > 0; }

private:
    struct Walk;
    void WriteLeaf(const Var& value);
    void WriteText(const String& text);

    JsonWriter& json_;
    TextBlobs* blobs_;
    std::uint64_t left_;
};

}  // namespace qn::exchange

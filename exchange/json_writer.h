#pragma once

#include "frame/host/string.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qn::exchange {

/// Builds one JSON text piece by piece, UTF-8. The outer levels get a line for each entry, what is inside
/// stands on that line. Expects that calls come in the order of a well-formed text.
class JsonWriter {
public:
    /// Entries down to `lineLevels` containers deep begin a line.
    explicit JsonWriter(std::size_t lineLevels = 2) : lineLevels_(lineLevels) {}

    void BeginObject() { Open('{'); }
    void EndObject() { Close('}'); }
    void BeginArray() { Open('['); }
    void EndArray() { Close(']'); }
    void Key(std::string_view utf8);

    void Text(std::string_view utf8);
    void Text(const String& text) { Text(text.ToUtf8()); }
    /// The shortest text that reads back as the same number; null if it is none.
    void Number(double value);
    void Integer(std::int64_t value);
    void Bool(bool value);
    void Null();

    template <class Value>
    void TextField(std::string_view key, const Value& value) {
        Key(key);
        Text(value);
    }
    void IntegerField(std::string_view key, std::int64_t value) {
        Key(key);
        Integer(value);
    }

    /// The text with a final line feed; the writer is empty afterwards.
    std::string Take();

private:
    void Open(char bracket);
    void Close(char bracket);
    /// What stands between this entry and the one before it.
    void Separate();
    void NewLine();
    void Put(std::string_view raw);

    std::size_t lineLevels_;
    std::string text_;
    std::vector<bool> hasEntries_;  // one for each open container
    bool afterKey_ = false;
};

}  // namespace qn::exchange

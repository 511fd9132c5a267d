#pragma once

#include <string>
#include <string_view>

namespace assembly::tool {

/// Writes to stdout through one large buffer. A closed pipe ends the writing silently, any other failure ends
/// it, too, and is kept for `OutputError`; a cancelled run ends with kCancelled when the buffer is full.
class Output {
public:
    Output();
    ~Output();
    Output(const Output&) = delete;
    Output& operator=(const Output&) = delete;

    void Write(std::string_view text);
    void Line(std::string_view text = {});
    void Flush();
    /// False once the reader is gone or nothing more can be written.
    bool IsOpen() const { return open_; }
    /// Whether stdout is a terminal that wants colour (NO_COLOR is respected).
    bool HasColour() const { return colour_; }
    /// `text` in faint letters where there is colour.
    std::string Faint(std::string_view text) const;

private:
    std::string buffer_;
    bool open_ = true;
    bool colour_;
};

/// Why this process could not write all to stdout, as an `errno`; 0 if it could, or if the reader had enough.
int OutputError();

/// The text as a JSON string with its quotes.
std::string Quoted(std::string_view text);
/// The shortest text that reads back as the same number; no "-0".
std::string NumberText(double value);
/// Columns that the text takes on a terminal (two for wide letters; needs the letters' locale).
std::size_t Width(std::string_view utf8);
/// The text with control characters made visible, so that a name cannot move the cursor.
std::string Printable(std::string_view utf8);

}  // namespace assembly::tool

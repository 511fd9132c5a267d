#include "tool/terminal.h"

#include "frame/host/string.h"
#include "tool/cancel.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <unistd.h>
#include <wchar.h>
#include <cerrno>
#include <charconv>
#include <cstdio>
#include <cstdlib>

namespace assembly::tool {
namespace {

constexpr std::size_t kBufferSize = 1 << 16;

/// First byte of the letters U+0080 to U+00BF; those up to U+009F are control characters, too.
constexpr unsigned char kLeadOfHighControls = 0xc2;

bool IsHighControl(char second) {
    return static_cast<unsigned char>(second) < 0xa0;
}

int writeError = 0;

/// False if that failed; notes why, unless the reader is just gone.
bool PutOut(std::string_view bytes) {
    errno = 0;
    const bool isOut =
        std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() && std::fflush(stdout) == 0;
    if (!isOut && errno != EPIPE) writeError = errno != 0 ? errno : EIO;
    return isOut;
}

bool WantsColour() {
    const char* refused = std::getenv("NO_COLOR");
    return ::isatty(STDOUT_FILENO) && !(refused && *refused);
}

}  // namespace

Output::Output() : colour_(WantsColour()) {
    buffer_.reserve(kBufferSize);
}

Output::~Output() {
    Flush();
}

void Output::Write(std::string_view text) {
    buffer_ += text;
    if (buffer_.size() < kBufferSize) return;
    Flush();
    ThrowIfCancelled();
}

void Output::Line(std::string_view text) {
    Write(text);
    Write("\n");
}

void Output::Flush() {
    if (open_ && !buffer_.empty()) open_ = PutOut(buffer_);
    buffer_.clear();
}

std::string Output::Faint(std::string_view text) const {
    return colour_ ? "\x1b[2m" + std::string(text) + "\x1b[0m" : std::string(text);
}

int OutputError() {
    return writeError;
}

std::string Quoted(std::string_view text) {
    return nlohmann::json(text).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

std::string NumberText(double value) {
    if (value == 0) return "0";
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, value).ptr;
    return std::string(text, end);
}

std::size_t Width(std::string_view utf8) {
    const qn::String text = qn::String::FromUtf8(utf8);
    std::size_t width = 0;
    for (const wchar_t letter : text.View()) {
        const int columns = ::wcwidth(letter);
        width += columns < 0 ? 1 : static_cast<std::size_t>(columns);
    }
    return width;
}

std::string Printable(std::string_view utf8) {
    std::string result;
    result.reserve(utf8.size());
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto byte = static_cast<unsigned char>(utf8[i]);
        if (byte < 0x20 || byte == 0x7f)
            result += fmt::format("\\x{:02x}", byte);
        else if (byte == kLeadOfHighControls && i + 1 < utf8.size() && IsHighControl(utf8[i + 1]))
            result += fmt::format("\\x{:02x}", static_cast<unsigned char>(utf8[++i]));
        else
            result += utf8[i];
    }
    return result;
}

}  // namespace assembly::tool

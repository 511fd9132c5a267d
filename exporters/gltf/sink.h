#pragma once

#include "engine/stream/safe_file.h"
#include "exporters/gltf/export_failure.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qn::gltf_export {

/// Bytes on their way into a file, through a large buffer that writers may append to. Throws ExportFailure if
/// the disk refuses, or if there are more bytes than allowed.
class Sink {
public:
    Sink(SafeFile& file, std::uint64_t mostBytes) : file_(file), mostBytes_(mostBytes) {}

    /// To append to; call `Pass` from time to time.
    std::string& Text() { return buffer_; }
    void Pass() {
        if (buffer_.size() >= kBufferSize) Flush();
    }
    void Write(std::string_view bytes) {
        if (bytes.size() < kBufferSize) {
            buffer_ += bytes;
            return Pass();
        }
        Flush();
        Send(bytes);
    }
    void Flush() {
        Send(buffer_);
        buffer_.clear();
    }
    /// All bytes up to now.
    std::uint64_t Count() const { return sent_ + buffer_.size(); }

private:
    static constexpr std::size_t kBufferSize = std::size_t{1} << 20;

    void Send(std::string_view bytes) {
        sent_ += bytes.size();
        if (sent_ > mostBytes_)
            throw ExportFailure(Outcome::kLimit, "the file would be larger than the format allows, " +
                                                     std::to_string(mostBytes_) +
                                                     " bytes; a .gltf keeps its buffer in a file of its own");
        if (!file_.Write(bytes)) throw ExportFailure(Outcome::kNotWritten, std::string());
    }

    SafeFile& file_;
    std::uint64_t mostBytes_;
    std::uint64_t sent_ = 0;
    std::string buffer_;
};

}  // namespace qn::gltf_export

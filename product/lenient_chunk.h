#pragma once

#include "frame/host/stream.h"

namespace qn::k3::effectivity_impl {

/// A chunk that is open for one scope. Where the stream cannot open it, writing goes on in the chunk around
/// it and nothing is closed.
class LenientChunk {
public:
    LenientChunk(Stream* stream, int id)
        : stream_(stream), open_(stream->BeginChunk(static_cast<unsigned>(id))) {}
    ~LenientChunk() {
        if (open_) stream_->EndChunk();
    }
    LenientChunk(const LenientChunk&) = delete;
    LenientChunk& operator=(const LenientChunk&) = delete;

private:
    Stream* stream_;
    bool open_;
};

}  // namespace qn::k3::effectivity_impl

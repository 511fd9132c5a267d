#pragma once

#include "frame/host/context.h"

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qn::gltf {

/// Ends the reading of a file: what is wrong, with the place in front. Does not leave the importer.
class GltfError : public std::runtime_error {
public:
    explicit GltfError(const std::string& text, LoadFailure kind = LoadFailure::kMalformed)
        : std::runtime_error(text), kind_(kind) {}
    LoadFailure Kind() const { return kind_; }

private:
    LoadFailure kind_;
};

/// "/nodes/12"
inline std::string PointerTo(std::string_view list, std::uint64_t index) {
    return "/" + std::string(list) + "/" + std::to_string(index);
}

[[noreturn]] inline void FailAt(const std::string& pointer, const std::string& text,
                                LoadFailure kind = LoadFailure::kMalformed) {
    throw GltfError((pointer.empty() ? "" : pointer + ": ") + text, kind);
}

}  // namespace qn::gltf

#pragma once

#include <cstdint>
#include <string>

namespace qn::gltf {

/// Counts the memory that a file asks for before it is taken: so much for any file, and more in proportion to
/// the bytes of the file. What several parts of a file share is counted for each part that gets a copy.
class Allowance {
public:
    /// Bytes of the file, or of another one that it names.
    void Grant(std::uint64_t stored) { stored_ += stored; }
    /// Throws GltfError, kLimit, naming the place, when all that was taken is too much.
    void Take(std::uint64_t bytes, const std::string& place);
    /// The same for elements of an accessor that no byte of a file stands for.
    void TakeUnbacked(std::uint64_t elements, const std::string& place);

private:
    std::uint64_t stored_ = 0;
    std::uint64_t taken_ = 0;
    std::uint64_t unbacked_ = 0;
};

}  // namespace qn::gltf

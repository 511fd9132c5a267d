#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace qn {

/// A place in one body, with the chunks that are entered there. Never leaves the present chunk.
class ChunkCursor {
public:
    /// What came of the attempt to enter a chunk.
    enum class Step { kEntered, kEnd, kCutHeader, kTooLong, kTooDeep };

    void Start(std::string_view body);

    /// Enters the chunk at the present place. Where it cannot, the place stays.
    Step Enter();
    /// Goes to the end of the present chunk and leaves it; outside of all chunks nothing happens.
    void Leave();
    /// Takes up to `size` bytes of the present chunk.
    std::string_view Take(std::size_t size);

    /// Of the present chunk, 0 outside.
    int GetId() const { return levels_.empty() ? 0 : levels_.back().id; }
    std::size_t Remaining() const { return GetEnd() - place_; }
    std::size_t GetPlace() const { return place_; }
    /// The ids of the chunks entered, as "0x1000/0x3"; empty outside.
    std::string GetPath() const;

private:
    struct Level {
        std::size_t end;
        int id;
    };
    std::size_t GetEnd() const { return levels_.empty() ? body_.size() : levels_.back().end; }

    std::string_view body_;
    std::size_t place_ = 0;
    std::vector<Level> levels_;
};

}  // namespace qn

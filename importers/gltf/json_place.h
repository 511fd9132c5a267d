#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace qn::gltf {

/// Where in a JSON text a reader stands. Entered and left by hand, so that after an exception it still
/// tells where that happened.
class JsonPlace {
public:
    /// The name must live as long as the place.
    void Enter(std::string_view name) { Push({name, 0}); }
    void Enter(std::uint64_t index) { Push({{}, index}); }
    void Leave() { --depth_; }
    void Renumber(std::uint64_t index) { parts_[(depth_ < kKept ? depth_ : kKept) - 1].index = index; }

    /// As a JSON pointer: "/nodes/12/children/3". What lies deeper than it keeps count of is left out.
    std::string Pointer() const {
        std::string pointer;
        for (std::size_t i = 0; i < depth_ && i < kKept; ++i) {
            pointer += '/';
            if (parts_[i].name.data())
                AddEscaped(pointer, parts_[i].name);
            else
                pointer += std::to_string(parts_[i].index);
        }
        return pointer;
    }

private:
    struct Part {
        std::string_view name;  ///< null data: an index
        std::uint64_t index = 0;
    };
    static constexpr std::size_t kKept = 16;

    void Push(Part part) {
        if (depth_ < kKept) parts_[depth_] = part;
        ++depth_;
    }
    static void AddEscaped(std::string& pointer, std::string_view name) {
        for (const char letter : name) {
            if (letter == '~')
                pointer += "~0";
            else if (letter == '/')
                pointer += "~1";
            else
                pointer += letter;
        }
    }

    std::array<Part, kKept> parts_{};
    std::size_t depth_ = 0;
};

}  // namespace qn::gltf

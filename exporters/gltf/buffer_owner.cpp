#include "exporters/gltf/buffer_owner.h"

#include <charconv>
#include <filesystem>
#include <fstream>

#include <nlohmann/json.hpp>

namespace qn::gltf_export {
namespace {

std::string DecodePercent(std::string_view uri) {
    constexpr std::size_t kCodeLength = 3;
    std::string plain;
    for (std::size_t i = 0; i < uri.size(); ++i) {
        const std::string_view code = uri.substr(i, kCodeLength);
        unsigned letter = 0;
        const bool isCode = code.size() == kCodeLength && code.front() == '%' &&
                            std::from_chars(code.data() + 1, code.data() + kCodeLength, letter, 16).ptr ==
                                code.data() + kCodeLength;
        plain += isCode ? static_cast<char>(letter) : uri[i];
        if (isCode) i += kCodeLength - 1;
    }
    return plain;
}

/// Takes the events of a JSON text as they come, so that a file may be as large and as deep as it likes. Ends
/// the reading at the buffer that is looked for.
class BufferSearch : public nlohmann::json_sax<nlohmann::json> {
public:
    explicit BufferSearch(const std::string& name) : name_(name) {}
    bool IsFound() const { return isFound_; }

    bool key(string_t& key) override {
        if (depth_ == kDocument) isInBuffers_ = key == "buffers";
        isUri_ = isInBuffers_ && depth_ == kBuffer && key == "uri";
        return true;
    }
    bool string(string_t& text) override {
        isFound_ = isUri_ && std::filesystem::path(DecodePercent(text)).lexically_normal() == name_;
        isUri_ = false;
        return !isFound_;
    }
    bool start_object(std::size_t) override { return Enter(); }
    bool start_array(std::size_t) override { return Enter(); }
    bool end_object() override { return Leave(); }
    bool end_array() override { return Leave(); }
    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(number_integer_t) override { return true; }
    bool number_unsigned(number_unsigned_t) override { return true; }
    bool number_float(number_float_t, const string_t&) override { return true; }
    bool binary(binary_t&) override { return true; }
    bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception&) override {
        return false;
    }

private:
    /// Brackets around the members of the document, and of one of its buffers.
    static constexpr std::size_t kDocument = 1, kBuffer = 3;

    bool Enter() {
        ++depth_;
        isUri_ = false;
        return true;
    }
    bool Leave() {
        --depth_;
        return true;
    }

    const std::string& name_;
    std::size_t depth_ = 0;
    bool isInBuffers_ = false, isUri_ = false, isFound_ = false;
};

}  // namespace

bool NamesBuffer(const std::string& path, const std::string& bufferName) {
    std::ifstream file(path, std::ios::binary);
    BufferSearch search(bufferName);
    if (file) nlohmann::json::sax_parse(file, &search);
    return search.IsFound();
}

}  // namespace qn::gltf_export

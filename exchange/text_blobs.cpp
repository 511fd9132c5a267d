#include "exchange/text_blobs.h"

#include "engine/runtime/byte_stream.h"
#include "engine/stream/file_io.h"
#include "exchange/file_access.h"

#include <xxhash.h>

#include <cstdio>

namespace qn::exchange {
namespace {

constexpr const char* kEnding = ".txt";

std::string HashText(const std::string& bytes) {
    const XXH128_hash_t hash = XXH3_128bits(bytes.data(), bytes.size());
    char digits[33];
    std::snprintf(digits, sizeof digits, "%016llx%016llx", static_cast<unsigned long long>(hash.high64),
                  static_cast<unsigned long long>(hash.low64));
    return digits;
}

bool IsThere(const String& file, const std::string& content) {
    const auto present = ByteStream::OpenFile(file);
    return present && present->Rest() == content;
}

}  // namespace

std::string TextBlobs::Add(const std::string& utf8) {
    const std::string hash = HashText(utf8);
    for (int same = 1;; ++same) {
        // Two texts of one hash are told apart by the order in which they are met.
        const std::string name = hash + (same == 1 ? "" : "-" + std::to_string(same)) + kEnding;
        const auto [entry, isNew] = files_.try_emplace(name, utf8);
        if (isNew || entry->second == utf8) return name;
    }
}

bool TextBlobs::Write(Context& context) const {
    if (!MakeFolder(folder_, context)) return false;
    String folder = folder_;
    folder.AddSlash();
    for (const auto& [name, content] : files_) {
        const String file = folder + String::FromUtf8(name);
        if (!IsThere(file, content) && !WriteFileSafely(file, content, context)) return false;
    }
    return true;
}

}  // namespace qn::exchange

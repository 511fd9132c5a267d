#include "engine/runtime/byte_stream.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace qn {
namespace {

constexpr int kReadBlock = 64 * 1024;

}  // namespace

ByteStream::ByteStream(std::shared_ptr<const std::string> bytes) : bytes_(std::move(bytes)) {}

Counted<ByteStream> ByteStream::FromBytes(std::string bytes) {
    return Make<ByteStream>(std::make_shared<const std::string>(std::move(bytes)));
}

Counted<ByteStream> ByteStream::OpenFile(const String& path) {
    const std::filesystem::path file = path.ToUtf8();
    std::error_code error;
    if (!std::filesystem::is_regular_file(file, error)) return {};
    std::ifstream in(file, std::ios::binary);
    const auto size = std::filesystem::file_size(file, error);
    if (!in || error) return {};
    std::string bytes(size, '\0');
    in.read(bytes.data(), static_cast<std::streamsize>(size));
    if (in.bad()) return {};
    bytes.resize(static_cast<std::size_t>(in.gcount()));
    return FromBytes(std::move(bytes));
}

std::string_view ByteStream::Rest() const {
    return std::string_view(*bytes_).substr(position_);
}

bool ByteStream::BeginChunk(unsigned) {
    return false;
}
void ByteStream::EndChunk() {}
bool ByteStream::WriteData(const void*, int, int) {
    return false;
}
bool ByteStream::WriteInt(int) {
    return false;
}
bool ByteStream::WriteObjectChunk(Interface*, Context*, int) {
    return false;
}
bool ByteStream::WriteObjectNumber(Interface*, Context*, bool) {
    return false;
}
bool ByteStream::NextChunk() {
    return false;
}
int ByteStream::GetChunkId() const {
    return 0;
}

int ByteStream::ReadData(void* data, int itemSize, int count) {
    if (!data || itemSize <= 0 || count <= 0) return 0;
    const std::size_t size = static_cast<std::size_t>(itemSize);
    const std::size_t items = std::min(static_cast<std::size_t>(count), Remaining() / size);
    std::memcpy(data, bytes_->data() + position_, items * size);
    position_ += items * size;
    return static_cast<int>(items);
}

bool ByteStream::ReadInt(int& value) {
    unsigned char bytes[4];
    if (ReadData(bytes, 4, 1) != 1) return false;
    unsigned word = 0;
    for (int i = 3; i >= 0; --i)
        word = word << 8 | bytes[i];
    value = static_cast<int>(word);
    return true;
}

Counted<Interface> ByteStream::ReadObject(Context*) {
    return {};
}
Counted<Interface> ByteStream::ReadObjectNumber(Context*) {
    return {};
}

bool ByteStream::Fail(const String& text) {
    if (!failed_) failureText_ = text;
    failed_ = true;
    return false;
}

const ClassRecord& ByteStream::StaticClass() {
    static const ClassRecord& record = InternClass("qn::ByteStream");
    return record;
}

void* ByteStream::CastTo(const ClassRecord& wanted) {
    return CastThrough<ByteStream, Stream>(this, wanted);
}

std::string ReadToEnd(Stream& stream) {
    std::string bytes;
    std::size_t used = 0;
    for (int read = 1; read > 0; used += static_cast<std::size_t>(read)) {
        bytes.resize(used + kReadBlock);
        read = std::max(0, stream.ReadData(bytes.data() + used, 1, kReadBlock));
    }
    bytes.resize(used);
    return bytes;
}

}  // namespace qn

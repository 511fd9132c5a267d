#include "engine/stream/stream_reader.h"

#include "engine/stream/stored_generator.h"
#include "frame/host/reference_source.h"

#include <algorithm>
#include <cstring>

#include <fmt/format.h>

namespace qn {
namespace {

using namespace scene_file;

constexpr std::size_t kProgressStep = 0x1000;  // objects between two reports

}  // namespace

StreamReader::StreamReader(std::string name, std::string_view file, Context& context, bool verifyChecksums)
    : name_(std::move(name)),
      file_(file),
      context_(context),
      verifyChecksums_(verifyChecksums),
      inertGenerators_(context.GetOption(0, kInertGenerators, 0) != 0) {}

StreamReader::~StreamReader() = default;

bool StreamReader::Read() {
    Fault fault;
    if (!ReadContainer(file_, verifyChecksums_, container_, fault))
        return FailAt(fault.overLimit ? LoadFailure::kLimit : LoadFailure::kMalformed, fault.offset,
                      fault.cause);
    if (MakeObjects() && ReadBodies()) return true;
    TakeApart();
    return false;
}

Interface* StreamReader::GetRoot() const {
    return failed_ || objects_.empty() ? nullptr : objects_[container_.root - 1].Get();
}

bool StreamReader::MakeObjects() {
    for (const auto key : container_.classKeys)
        factories_.emplace_back(key);
    objects_.resize(container_.index.size());
    for (std::size_t i = 0; i < objects_.size(); ++i) {
        if (i % kProgressStep == 0 && context_.IsCancelled())
            return FailAt(LoadFailure::kCancelled, 0, "cancelled");
        if (!MakeObject(i, factories_[container_.index[i].classNumber])) return false;
    }
    return true;
}

bool StreamReader::MakeObject(std::size_t object, ObjectFactory& factory) {
    const bool isRoot = object + 1 == container_.root;
    if (isRoot && givenRoot_) {
        if (!EqualKeys(givenRoot_->GetInterfaceName(), factory.GetKey().c_str()))
            return FailAt(LoadFailure::kMalformed, 0,
                          fmt::format("the root is of class {}, wanted is {}", factory.GetKey(),
                                      givenRoot_->GetInterfaceName()));
        objects_[object] = givenRoot_;
        return true;
    }
    auto made = factory.Create();
    if (!made && !factory.IsUnknown())
        return FailAt(LoadFailure::kLimit, 0, fmt::format("no memory for object {}", object + 1));
    if (inertGenerators_ && Cast<k3::Generator>(made.Get())) made = Make<StoredGenerator>(factory.GetKey());
    if (made && (Cast<ReferenceSource>(made.Get()) || factory.WriterFor(*made))) {
        objects_[object] = std::move(made);
        return true;
    }
    if (isRoot)
        return FailAt(LoadFailure::kMalformed, 0,
                      fmt::format("nothing makes the root's class {}", factory.GetKey()));
    ++report_.unknown[factory.GetKey()];
    return true;
}

bool StreamReader::GoesOn(std::size_t object) {
    if (object % kProgressStep != 0) return true;
    const auto done = static_cast<double>(object) / static_cast<double>(objects_.size());
    if (context_.ReportProgress(done) && !context_.IsCancelled()) return true;
    return FailAt(LoadFailure::kCancelled, 0, "cancelled");
}

bool StreamReader::ReadBodies() {
    for (std::size_t i = 0; i < objects_.size(); ++i) {
        if (!GoesOn(i)) return false;
        const std::size_t length = container_.index[i].bodyLength;
        while (length != 0 && contentPlace_ == content_.size())
            if (!OpenNextBlock()) return false;
        bodyPlace_ = contentPlace_;
        contentPlace_ += length;
        if (objects_[i] && !ReadBody(i, content_.substr(bodyPlace_, length))) return false;
    }
    return true;
}

bool StreamReader::OpenNextBlock() {
    const Container::Block& block = container_.bodies[nextBlock_++];
    contentPlace_ = 0;
    if (UnpackBlock(block.row, file_.substr(block.offset, block.row.storedSize), unpacked_, content_))
        return true;
    return FailAt(LoadFailure::kMalformed, block.offset, "the compressed bytes of a block are damaged");
}

bool StreamReader::ReadBody(std::size_t object, std::string_view body) {
    object_ = object;
    inBody_ = true;
    cursor_.Start(body);
    const ResultEnum result = LoadObject(object);
    if (!Succeeded(result))
        FailHere(LoadFailure::kMalformed,
                 fmt::format("the object refuses what it reads: result {}", ToInt(result)));
    inBody_ = false;
    ++report_.objects;
    return !failed_;
}

ResultEnum StreamReader::LoadObject(std::size_t object) {
    Interface& loaded = *objects_[object];
    if (const ObjectWriter* writer = factories_[container_.index[object].classNumber].WriterFor(loaded))
        return writer->load(loaded, this, &context_);
    return Cast<ReferenceSource>(&loaded)->Load(this, &context_);
}

bool StreamReader::NextChunk() {
    if (failed_ || !inBody_) return false;
    switch (cursor_.Enter()) {
        case ChunkCursor::Step::kEntered:
            return true;
        case ChunkCursor::Step::kEnd:
            return false;
        case ChunkCursor::Step::kCutHeader:
            return FailHere(LoadFailure::kMalformed, "a chunk begins, but its header is cut off");
        case ChunkCursor::Step::kTooLong:
            return FailHere(
                LoadFailure::kMalformed,
                fmt::format("a chunk claims more than the {} bytes that are left", cursor_.Remaining()));
        case ChunkCursor::Step::kTooDeep:
            return FailHere(LoadFailure::kLimit, "chunks are nested too deep");
    }
    return false;
}

void StreamReader::EndChunk() {
    cursor_.Leave();
}

int StreamReader::ReadData(void* data, int itemSize, int count) {
    if (failed_ || !inBody_ || !data || itemSize <= 0 || count <= 0) return 0;
    const auto size = static_cast<std::size_t>(itemSize);
    const std::size_t items = std::min(static_cast<std::size_t>(count), cursor_.Remaining() / size);
    if (items == 0) return 0;  // an empty body has no bytes to point at
    const auto bytes = cursor_.Take(items * size);
    std::memcpy(data, bytes.data(), bytes.size());
    return static_cast<int>(items);
}

bool StreamReader::ReadInt(int& value) {
    value = 0;
    return ReadData(&value, sizeof value, 1) == 1;
}

Counted<Interface> StreamReader::ReadObjectNumber(Context*) {
    std::uint32_t number = 0;
    if (ReadData(&number, kNumberSize, 1) != 1) {
        if (inBody_) FailHere(LoadFailure::kMalformed, "the number of an object is cut off");
        return {};
    }
    if (number == 0) return {};
    if (number <= objects_.size()) return objects_[number - 1];
    FailHere(LoadFailure::kMalformed,
             fmt::format("object {} is named, there are {}", number, objects_.size()));
    return {};
}

bool StreamReader::Fail(const String& text) {
    return FailHere(LoadFailure::kMalformed, text.ToUtf8());
}

bool StreamReader::FailHere(LoadFailure kind, const std::string& cause) {
    if (!inBody_) return FailAt(kind, 0, cause);
    const bool hasBlock = nextBlock_ != 0;
    const std::uint64_t place = bodyPlace_ + cursor_.GetPlace();
    std::string where;
    std::uint64_t offset = 0;
    if (hasBlock) {
        const Container::Block& block = container_.bodies[nextBlock_ - 1];
        const bool plain = block.row.coding == static_cast<std::uint32_t>(Coding::kPlain);
        offset = block.offset + (plain ? place : 0);
        if (!plain) where = fmt::format("byte {} of the compressed block there, ", place);
    }
    if (const auto path = cursor_.GetPath(); !path.empty()) where += fmt::format("chunk {} of ", path);
    where += fmt::format("object {} of class {}: ", object_ + 1, objects_[object_]->GetInterfaceName());
    return FailAt(kind, offset, where + cause);
}

bool StreamReader::FailAt(LoadFailure kind, std::uint64_t offset, const std::string& cause) {
    if (failed_) return false;
    failed_ = true;
    const auto text = kind == LoadFailure::kCancelled ? fmt::format("{}: {}", name_, cause)
                                                      : fmt::format("{}: byte {}: {}", name_, offset, cause);
    context_.Fail(kind, String::FromUtf8(text));
    return false;
}

void StreamReader::TakeApart() {
    for (const auto& object : objects_) {
        auto* source = Cast<ReferenceSource>(object.Get());
        if (!source || object == givenRoot_) continue;
        source->Clear();
        source->SetParams(nullptr);
        source->SetMetadata(nullptr);
    }
}

const ClassRecord& StreamReader::StaticClass() {
    static const ClassRecord& record = InternClass("qn::StreamReader");
    return record;
}

void* StreamReader::CastTo(const ClassRecord& wanted) {
    return CastThrough<StreamReader, Stream>(this, wanted);
}

}  // namespace qn

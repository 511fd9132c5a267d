#include "engine/stream/stream_writer.h"

#include "engine/stream/container.h"
#include "engine/stream/limits.h"
#include "engine/stream/object_factory.h"
#include "frame/host/collections.h"
#include "frame/host/object_writer.h"

#include <fmt/format.h>

#include <algorithm>

namespace qn {
namespace {

namespace limits = scene_file_limits;
using namespace scene_file;

constexpr std::uint32_t kNoRecord = PointerIndex::kNone;
constexpr std::uint32_t kProgressStep = 0x1000;  // objects between two reports
constexpr double kBodiesShare = 0.7;             // of all work; the rest is putting the file together

bool CanBeWritten(Interface& object, const char* key) {
    return key && *key && (Cast<ReferenceSource>(&object) || FindObjectWriter(key));
}

}  // namespace

StreamWriter::StreamWriter(std::string name, Context& context, bool expandGenerated)
    : name_(std::move(name)), context_(context), expandGenerated_(expandGenerated) {}

StreamWriter::~StreamWriter() = default;

// Only when all bodies are written is it known which weak values lead nowhere. If there are any, all is
// written once more, now without them, for a file that is loaded and saved again is to be the same.
std::string StreamWriter::Write(Interface& root) {
    if (!WriteBodies(root)) return {};
    if (LearnLooseEnds() && !WriteBodies(root)) return {};
    const auto order = OrderFrom(graph_, 0);
    PatchNumbers(order);
    report_.objects = static_cast<std::uint32_t>(order.size());
    return Assemble(order);
}

bool StreamWriter::WriteBodies(Interface& root) {
    if (Register(root) == kNoRecord)
        return FailWith(LoadFailure::kDefect, "nothing can write the root object");
    for (std::uint32_t record = 0; record < records_.size(); ++record) {
        const double known = static_cast<double>(records_.size());
        if (record % kProgressStep == 0 && !GoesOn(kBodiesShare * record / known)) return false;
        if (!records_[record].saved && !WriteBody(record)) return false;
    }
    return !failed_;
}

bool StreamWriter::GoesOn(double done) {
    done_ = std::max(done_, done);
    if (context_.ReportProgress(done_) && !context_.IsCancelled()) return true;
    return FailWith(LoadFailure::kCancelled, "cancelled");
}

bool StreamWriter::LearnLooseEnds() {
    for (const WeakLink& link : weakLinks_)
        if (recordOf_.Find(link.target) == kNoRecord) looseEnds_.insert(link.target);
    if (looseEnds_.empty()) return false;
    report_ = {};
    bytes_.clear(), records_.clear(), recordOf_.Clear(), places_.clear(), weakLinks_.clear();
    graph_ = {};
    classes_.clear(), classNumberOf_.clear(), classNumberOfText_.clear();
    objects_.clear();
    return true;
}

bool StreamWriter::WriteBody(std::uint32_t record) {
    records_[record].saved = true;
    if (openCount_ == open_.size()) open_.emplace_back();
    Body& body = open_[openCount_++];
    body.record = record;
    const ResultEnum result = SaveObject(record);
    if (!Succeeded(result))
        FailWith(LoadFailure::kDefect, fmt::format("the object cannot be saved: result {}", ToInt(result)));
    KeepBody(body);
    --openCount_;
    return !failed_;
}

ResultEnum StreamWriter::SaveObject(std::uint32_t record) {
    Interface& object = *objects_[record];
    if (const ObjectWriter* writer = classes_[records_[record].classNumber].writer)
        return writer->save(object, this, &context_);
    return Cast<ReferenceSource>(&object)->Save(this, &context_);
}

void StreamWriter::KeepBody(Body& body) {
    const std::size_t begin = bytes_.size();
    Record& record = records_[body.record];
    record.begin = begin;
    record.length = static_cast<std::uint32_t>(body.bytes.size());
    bytes_.append(body.bytes);
    const std::size_t firstLink = places_.size();
    for (const Link& link : body.links) {
        places_.push_back(begin + link.place);
        graph_.Targets().push_back(link.target);
    }
    graph_.SetTargets(body.record, firstLink, body.links.size());
    for (const WeakLink& link : body.weakLinks)
        weakLinks_.push_back({begin + link.place, link.target});
    body.bytes.clear(), body.links.clear(), body.weakLinks.clear(), body.chunks.clear();
}

std::uint32_t StreamWriter::Register(Interface& object) {
    if (const std::uint32_t known = recordOf_.Find(&object); known != kNoRecord) return known;
    const char* key = object.GetInterfaceName();
    if (!CanBeWritten(object, key)) {
        ++report_.unwritable[key && *key ? key : "(no class key)"];
        return kNoRecord;
    }
    if (records_.size() >= limits::kMostObjects) {
        FailWith(LoadFailure::kLimit, fmt::format("more than {} objects", limits::kMostObjects));
        return kNoRecord;
    }
    const auto record = static_cast<std::uint32_t>(records_.size());
    recordOf_.Insert(&object, record);
    objects_.emplace_back(&object);
    records_.push_back({0, 0, ClassNumberOf(object), false});
    graph_.Resize(records_.size());
    return record;
}

std::uint32_t StreamWriter::ClassNumberOf(const Interface& object) {
    const char* key = StoredKeyOf(object);
    if (const auto known = classNumberOfText_.find(key); known != classNumberOfText_.end())
        return known->second;
    const auto known = classNumberOf_.find(key);
    const std::uint32_t number = known != classNumberOf_.end() ? known->second : AddClass(key, object);
    classNumberOfText_.emplace(key, number);
    return number;
}

std::uint32_t StreamWriter::AddClass(const char* key, const Interface& object) {
    const auto number = static_cast<std::uint32_t>(classes_.size());
    classes_.push_back({key, FindObjectWriter(object.GetInterfaceName())});
    classNumberOf_.emplace(key, number);
    if (classes_.size() > limits::kMostClasses || classes_.back().key.size() > limits::kLongestClassKey)
        FailWith(LoadFailure::kLimit, fmt::format("more than {} classes, or a key of more than {} letters",
                                                  limits::kMostClasses, limits::kLongestClassKey));
    return number;
}

void StreamWriter::PatchNumbers(const std::vector<std::uint32_t>& order) {
    std::vector<std::uint32_t> numberOf(records_.size());
    for (std::uint32_t i = 0; i < order.size(); ++i)
        numberOf[order[i]] = i + 1;
    const auto& targets = graph_.Targets();
    for (std::size_t i = 0; i < places_.size(); ++i)
        PutAt(bytes_.data() + places_[i], numberOf[targets[i]]);
    for (const WeakLink& link : weakLinks_)
        if (const std::uint32_t known = recordOf_.Find(link.target); known != kNoRecord)
            PutAt(bytes_.data() + link.place, numberOf[known]);
}

std::string StreamWriter::Assemble(const std::vector<std::uint32_t>& order) {
    std::vector<std::uint32_t> classOf(classes_.size(), kNoRecord);
    std::uint32_t classCount = 0;
    std::string classes, index;
    for (const std::uint32_t number : order) {
        const Record& record = records_[number];
        std::uint32_t& classNumber = classOf[record.classNumber];
        if (classNumber == kNoRecord) {
            const std::string& key = classes_[record.classNumber].key;
            Put(classes, static_cast<std::uint16_t>(key.size()));
            classes.append(key);
            classNumber = classCount++;
        }
        Put(index, static_cast<std::uint16_t>(classNumber));
        Put(index, record.length);
    }
    std::string head, blocks;
    std::vector<BlockRow> rows{PackBlock(BlockKind::kClasses, classes, head),
                               PackBlock(BlockKind::kIndex, index, head)};
    if (!PackBodies(order, rows, blocks)) return {};
    const auto count = static_cast<std::uint32_t>(order.size());
    std::string file = WriteContainer(rows, head.append(blocks), count, classCount, count);
    return GoesOn(1) ? std::move(file) : std::string();
}

bool StreamWriter::PackBodies(const std::vector<std::uint32_t>& order, std::vector<BlockRow>& rows,
                              std::string& blocks) {
    std::string block;
    std::size_t packed = 0;
    const auto flush = [&] {
        if (block.empty()) return true;
        rows.push_back(PackBlock(BlockKind::kBodies, block, blocks));
        packed += block.size();
        block.clear();
        const double share = static_cast<double>(packed) / static_cast<double>(bytes_.size());
        return GoesOn(kBodiesShare + (1 - kBodiesShare) * share);
    };
    for (const std::uint32_t number : order) {
        const Record& record = records_[number];
        if (record.length > kBlockSize && !flush()) return false;
        block.append(bytes_, record.begin, record.length);
        if (block.size() >= kBlockSize && !flush()) return false;
    }
    return flush();
}

bool StreamWriter::Fail(const String& text) {
    return FailWith(LoadFailure::kDefect, text.ToUtf8());
}

bool StreamWriter::FailWith(LoadFailure kind, const std::string& cause) {
    if (failed_) return false;
    failed_ = true;
    std::string text = name_ + ": ";
    if (openCount_ != 0) {
        if (const int id = GetChunkId()) text += fmt::format("chunk {:#x} of ", id);
        text += fmt::format("an object of class {}: ",
                            objects_[open_[openCount_ - 1].record]->GetInterfaceName());
    }
    context_.Fail(kind, String::FromUtf8(text + cause));
    return false;
}

bool StreamWriter::LeavesOut(Interface& object, bool weak) const {
    return (weak && looseEnds_.contains(&object)) || !CanBeWritten(object, object.GetInterfaceName());
}

bool IsStored(Stream* stream, Interface* object, bool weak) {
    const auto* writer = Cast<StreamWriter>(stream);
    return object && !(writer && writer->LeavesOut(*object, weak));
}

const ClassRecord& StreamWriter::StaticClass() {
    static const ClassRecord& record = InternClass("qn::StreamWriter");
    return record;
}

void* StreamWriter::CastTo(const ClassRecord& wanted) {
    return CastThrough<StreamWriter, Stream>(this, wanted);
}

}  // namespace qn

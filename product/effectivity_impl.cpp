#include "product/effectivity_impl.h"

#include "frame/host/stream.h"
#include "product/lenient_chunk.h"

namespace qn::k3::effectivity_impl {
namespace {

// Chunks of the object, in the order in which they are written.
constexpr int kBaseChunk = 0x100;
constexpr int kDatesChunk = 0x1000;
constexpr int kLinesChunk = 0x1001;

template <class Value>
const Range<Value>* At(const std::vector<Range<Value>>& ranges, unsigned index) {
    return index < ranges.size() ? &ranges[index] : nullptr;
}

template <class Value>
unsigned StringCount(const std::vector<Range<Value>>& ranges, unsigned index) {
    const auto* range = At(ranges, index);
    return range ? static_cast<unsigned>(range->mStrings.size()) : 0;
}

template <class Value>
String StringAt(const std::vector<Range<Value>>& ranges, unsigned index, unsigned stringIndex) {
    return stringIndex < StringCount(ranges, index) ? ranges[index].mStrings[stringIndex] : String();
}

template <class Value>
bool AddString(std::vector<Range<Value>>& ranges, unsigned index, const String& text) {
    if (index >= ranges.size()) return false;
    ranges[index].mStrings.push_back(text);
    return true;
}

template <class Value>
ResultEnum SaveList(const std::vector<Range<Value>>& ranges, int id, Stream* stream) {
    if (ranges.empty()) return ResultEnum::kSuccess;
    const LenientChunk chunk(stream, id);
    return SaveRanges(ranges, stream);
}

}  // namespace

unsigned EffectivityImpl::GetDateCount() const {
    return static_cast<unsigned>(dates_.size());
}
std::int64_t EffectivityImpl::GetDateStart(unsigned index) const {
    const DateRange* range = At(dates_, index);
    return range ? range->mStart : 0;
}
std::int64_t EffectivityImpl::GetDateEnd(unsigned index) const {
    const DateRange* range = At(dates_, index);
    return range ? range->mEnd : 0;
}
bool EffectivityImpl::AddDateRange(std::int64_t start, std::int64_t end) {
    dates_.push_back({start, end, {}});
    return true;
}
unsigned EffectivityImpl::GetDateStringCount(unsigned index) const {
    return StringCount(dates_, index);
}
String EffectivityImpl::GetDateString(unsigned index, unsigned stringIndex) const {
    return StringAt(dates_, index, stringIndex);
}
bool EffectivityImpl::AddDateString(unsigned index, const String& text) {
    return AddString(dates_, index, text);
}

unsigned EffectivityImpl::GetLineCount() const {
    return static_cast<unsigned>(lines_.size());
}
std::int32_t EffectivityImpl::GetLineStart(unsigned index) const {
    const LineRange* range = At(lines_, index);
    return range ? range->mStart : 0;
}
std::int32_t EffectivityImpl::GetLineEnd(unsigned index) const {
    const LineRange* range = At(lines_, index);
    return range ? range->mEnd : 0;
}
bool EffectivityImpl::AddLineRange(std::int32_t start, std::int32_t end) {
    lines_.push_back({start, end, {}});
    return true;
}
unsigned EffectivityImpl::GetLineStringCount(unsigned index) const {
    return StringCount(lines_, index);
}
String EffectivityImpl::GetLineString(unsigned index, unsigned stringIndex) const {
    return StringAt(lines_, index, stringIndex);
}
bool EffectivityImpl::AddLineString(unsigned index, const String& text) {
    return AddString(lines_, index, text);
}

ResultEnum EffectivityImpl::Save(Stream* stream, Context* context) {
    {
        const LenientChunk chunk(stream, kBaseChunk);
        const ResultEnum base = ReferenceSource::Save(stream, context);
        if (base != ResultEnum::kSuccess) return base;
    }
    const ResultEnum dates = SaveList(dates_, kDatesChunk, stream);
    return dates == ResultEnum::kSuccess ? SaveList(lines_, kLinesChunk, stream) : dates;
}

ResultEnum EffectivityImpl::Load(Stream* stream, Context* context) {
    ResultEnum result = ResultEnum::kSuccess;
    while (Succeeded(result) && stream->NextChunk()) {
        const int id = stream->GetChunkId();
        if (id == kBaseChunk)
            result = ReferenceSource::Load(stream, context);
        else if (id == kDatesChunk)
            result = LoadRanges(dates_, stream);
        else if (id == kLinesChunk)
            result = LoadRanges(lines_, stream);
        stream->EndChunk();
    }
    return result;
}

ResultEnum EffectivityImpl::CopyFrom(const Interface* source, unsigned flags) {
    const auto* other = Cast<Effectivity>(source);
    return other ? ReferenceSource::CloneFrom(*other, flags) : ResultEnum::kWrongClass;
}

bool EffectivityImpl::IsTypeOf(const char* name) const {
    return EqualKeys(name, kEffectivityKey) || ReferenceSource::IsTypeOf(name);
}

const ClassRecord& EffectivityImpl::StaticClass() {
    static const ClassRecord& record = InternClass("qn::k3::effectivity_impl::EffectivityImpl");
    return record;
}

void* EffectivityImpl::CastTo(const ClassRecord& wanted) {
    return CastThrough<EffectivityImpl, Effectivity>(this, wanted);
}

}  // namespace qn::k3::effectivity_impl

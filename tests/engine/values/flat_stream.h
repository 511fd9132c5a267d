#pragma once

#include "frame/host/stream.h"
#include "frame/host/string.h"
#include "frame/host/var.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace qn::test {

/// A stream in memory that is written first and read after `Rewind`. Objects are kept as they are and come
/// back under their number; a weak number reads as null unless the object was also written without that mark.
class FlatStream final : public Stream {
public:
    std::string bytes;
    String failure;
    int failingWrite = 0;  ///< this write fails, counted from 1

    void Rewind() {
        at_ = 0;
        ends_ = {bytes.size()};
        ids_.clear();
    }

    bool BeginChunk(unsigned id) override {
        if (!WriteInt(static_cast<int>(id))) return false;
        starts_.push_back(bytes.size());
        return WriteInt(0);
    }
    void EndChunk() override {
        if (ends_.empty()) {
            const auto size = static_cast<std::uint32_t>(bytes.size() - starts_.back() - 4);
            std::memcpy(bytes.data() + starts_.back(), &size, 4);
            starts_.pop_back();
        } else {
            at_ = ends_.back();
            ends_.pop_back();
            ids_.pop_back();
        }
    }
    bool WriteData(const void* data, int itemSize, int count) override {
        if (++writes_ == failingWrite) return false;
        bytes.append(static_cast<const char*>(data), static_cast<std::size_t>(itemSize) * count);
        return true;
    }
    bool WriteInt(int value) override { return WriteData(&value, 4, 1); }
    bool WriteObjectChunk(Interface* object, Context* context, int id) override {
        if (!BeginChunk(static_cast<unsigned>(id)) || !WriteObjectNumber(object, context, false))
            return false;
        EndChunk();
        return true;
    }
    bool WriteObjectNumber(Interface* object, Context*, bool weak) override {
        if (!object) return WriteInt(0);
        auto [place, fresh] = numbers_.try_emplace(object, static_cast<int>(numbers_.size()) + 1);
        if (fresh) objects_.emplace_back(object);
        if (!weak) strong_.insert(place->second);
        return WriteInt(place->second);
    }
    bool NextChunk() override {
        int id = 0, size = 0;
        if (Remaining() < 8 || !ReadInt(id) || !ReadInt(size)) return false;
        ids_.push_back(id);
        ends_.push_back(at_ + static_cast<std::size_t>(size));
        return true;
    }
    int GetChunkId() const override { return ids_.empty() ? 0 : ids_.back(); }
    int ReadData(void* data, int itemSize, int count) override {
        const auto size = static_cast<std::size_t>(itemSize);
        const std::size_t items = std::min(static_cast<std::size_t>(count), Remaining() / size);
        std::memcpy(data, bytes.data() + at_, items * size);
        at_ += items * size;
        return static_cast<int>(items);
    }
    bool ReadInt(int& value) override { return ReadData(&value, 4, 1) == 1; }
    std::size_t Remaining() const override { return ends_.back() - at_; }
    Counted<Interface> ReadObject(Context* context) override { return ReadObjectNumber(context); }
    Counted<Interface> ReadObjectNumber(Context*) override {
        int number = 0;
        if (!ReadInt(number) || !strong_.count(number)) return nullptr;
        return objects_[static_cast<std::size_t>(number) - 1];
    }
    bool Fail(const String& text) override {
        failure = text;
        return false;
    }
    bool HasFailed() const override { return failure.NonEmpty(); }

private:
    std::vector<std::size_t> starts_, ends_;
    std::vector<int> ids_;
    std::size_t at_ = 0;
    int writes_ = 0;
    std::map<Interface*, int> numbers_;
    std::set<int> strong_;
    std::vector<Counted<Interface>> objects_;
};

/// The value after a save and a load.
inline Var RoundTrip(const Var& value) {
    const auto stream = Make<FlatStream>();
    value.Save(stream.Get(), nullptr);
    stream->Rewind();
    Var result;
    result.Load(stream.Get(), nullptr);
    return result;
}

}  // namespace qn::test

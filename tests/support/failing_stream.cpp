#include "tests/support/failing_stream.h"

#include <cstdio>

namespace qn::test {
namespace {

std::string Hex(unsigned number) {
    char digits[16];
    std::snprintf(digits, sizeof digits, "%x", number);
    return digits;
}

std::string NameOf(const Interface* object) {
    return object ? object->GetInterfaceName() : "null";
}

}  // namespace

bool FailingStream::BeginChunk(unsigned id) {
    if (!Note(begins_, failingBegin_, "begin " + Hex(id))) return false;
    open_.push_back(static_cast<int>(id));
    return true;
}

void FailingStream::EndChunk() {
    log_.emplace_back("end");
    if (!open_.empty()) open_.pop_back();
}

bool FailingStream::WriteData(const void*, int itemSize, int count) {
    return Note(writes_, failingWrite_, "data " + std::to_string(itemSize * count));
}

bool FailingStream::WriteInt(int value) {
    return Note(writes_, failingWrite_, "int " + std::to_string(value));
}

bool FailingStream::WriteObjectChunk(Interface* object, Context*, int id) {
    return Note(objects_, failingObject_, "object " + Hex(static_cast<unsigned>(id)) + " " + NameOf(object));
}

bool FailingStream::WriteObjectNumber(Interface* object, Context*, bool weak) {
    return Note(writes_, failingWrite_, std::string(weak ? "weak " : "number ") + NameOf(object));
}

bool FailingStream::Fail(const String&) {
    failed_ = true;
    return false;
}

/// Logs the call; false, with a mark in the log, if this is the one to fail.
bool FailingStream::Note(int& calls, int failing, const std::string& line) {
    const bool fails = ++calls == failing;
    log_.push_back(fails ? line + " failed" : line);
    failed_ = failed_ || fails;
    return !fails;
}

}  // namespace qn::test

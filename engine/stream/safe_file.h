#pragma once

#include "frame/host/context.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qn {

/// A file that is written beside its target and takes its place at the end: until then, and after any
/// failure, the target is as it was. A link is followed, the permissions of an old file are kept. Failures go
/// into the context.
class SafeFile {
public:
    explicit SafeFile(Context& context) : context_(context) {}
    /// Takes away what was not put in place.
    ~SafeFile();
    SafeFile(const SafeFile&) = delete;
    SafeFile& operator=(const SafeFile&) = delete;

    /// Makes the new file. False if that is not possible, or if the target is no regular file.
    bool Open(const std::string& path);
    /// Appends.
    bool Write(std::string_view bytes);
    /// Writes over bytes that are there already.
    bool WriteAt(std::uint64_t offset, std::string_view bytes);
    /// Brings the bytes to the disk.
    bool Flush();
    /// Puts the flushed file in the target's place and flushes the folder.
    bool Commit();

private:
    bool Fail(std::string_view what);

    Context& context_;
    std::string target_, sibling_;
    int handle_ = -1;
};

}  // namespace qn

#pragma once

#include "frame/host/context.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qn {

/// A file that is written beside its target and takes its place at the end: until then, and after any
/// failure, the target is as it was. A link is followed, even to a file that is not there yet; the
/// permissions of an old file are kept. Failures go into the context, under the path as it was given.
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
    /// The same for two flushed files that belong together, `first` first: after a failure to put them in
    /// place both targets are as they were. The old first file stands beside its place until the second is
    /// there.
    static bool CommitBoth(SafeFile& first, SafeFile& second);

private:
    bool Fail(std::string_view what);
    bool SetOldAside();
    void PutOldBack();
    bool Replace();
    bool FlushPlace();

    Context& context_;
    std::string path_;           ///< as it was given
    std::string target_;         ///< where that leads
    std::string sibling_, old_;  ///< the new file and, while two are put in place, the old one; or empty
    int handle_ = -1;
};

}  // namespace qn

#pragma once

#include "frame/host/string.h"

namespace qn {

/// The pieces of a path. Joined in this order they are the path again.
struct PathPieces {
    String drive;   ///< "X:", or nothing
    String folder;  ///< with its final slash, or nothing
    String name;    ///< up to the last "."
    String ending;  ///< with its ".", or nothing
};

/// Buffer sizes of the pieces in characters, the terminator included.
struct PathSizes {
    int drive = 3;
    int folder = 0x104;
    int name = 0x100;
    int ending = 0x100;
};

/// Takes "/" and "\" as slashes. A piece that does not fit its buffer is empty.
PathPieces SplitPath(const String& path, const PathSizes& sizes = {});

namespace filesys {

/// The folder of a file, without its final slash; empty if the path names none.
String GetPathFromFile(const String& file);
/// Makes the folder with all folders above it. True if it is there afterwards; false for an empty text.
bool CreateFolder(const String& folder);

}  // namespace filesys

}  // namespace qn

#pragma once

#include "engine/stream/load_report.h"
#include "frame/host/context.h"
#include "frame/host/counted.h"

#include <string>
#include <string_view>

namespace qn {

/// A scene file in memory with everything that `root` reaches. Empty after a failure, with the cause in the
/// context.
std::string SaveToBytes(Interface& root, Context& context);
/// The root of a scene file in memory. Null after a failure, with the cause in the context.
Counted<Interface> LoadFromBytes(std::string_view bytes, Context& context, LoadReport* report = nullptr);

/// What the other functions stand on. `name` stands in front of messages; `expandGenerated` is what
/// `StreamWriter` answers to nodes; `root` (may be null) is taken in place of a new root object.
std::string WriteObjects(Interface& root, const std::string& name, Context& context, bool expandGenerated,
                         SaveReport* report = nullptr);
Counted<Interface> ReadObjects(std::string_view bytes, const std::string& name, Context& context,
                               Interface* root = nullptr, LoadReport* report = nullptr);

/// The same with a file on the disk. A failed save leaves the old file as it was.
bool SaveObjectFile(Interface& root, const String& path, Context& context);
Counted<Interface> LoadObjectFile(const String& path, Context& context, LoadReport* report = nullptr);

}  // namespace qn

#pragma once

#include "frame/host/string.h"

namespace qn {

/// The text of `source` in the user's language; the source itself unless a hook is set. `kind` may be null,
/// `length` is -1 for all of it. Texts are UTF-8.
String Translate(const char* catalogue, const char* source, const char* kind, int length);

using TranslateHook = String (*)(const char* catalogue, const char* source, const char* kind);
/// Null takes the hook away.
void SetTranslateHook(TranslateHook hook);

}  // namespace qn

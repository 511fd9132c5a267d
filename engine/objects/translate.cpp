#include "frame/host/translate.h"

#include <cstring>
#include <string>

namespace qn {
namespace {

TranslateHook g_hook = nullptr;

}  // namespace

String Translate(const char* catalogue, const char* source, const char* kind, int length) {
    if (!source) return String();
    const std::string text = length < 0
                                 ? std::string(source)
                                 : std::string(source, strnlen(source, static_cast<std::size_t>(length)));
    return g_hook ? g_hook(catalogue, text.c_str(), kind) : String::FromUtf8(text);
}

void SetTranslateHook(TranslateHook hook) {
    g_hook = hook;
}

}  // namespace qn

// Importer records: one that can be read names a class and a library in its own folder.

#include "engine/import/importer_record.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    qn::ImporterRecord record;
    qn::String reason;
    if (!qn::ParseImporterRecord(text, "/modules", record, reason)) {
        if (reason.IsEmpty()) std::abort();
        return 0;
    }
    if (record.key.empty() || record.modulePath.rfind('/') != sizeof("/modules") - 1) std::abort();
    (void)qn::MatchesContent(record, text);
    (void)qn::MatchesEnding(record, text);
    return 0;
}

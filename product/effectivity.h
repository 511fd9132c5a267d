#pragma once

#include "frame/host/reference_source.h"
#include "frame/host/string.h"

#include <cstdint>

namespace qn::k3 {

inline constexpr const char* kEffectivityKey = "qn.k3.effectivity";

/// For which dates and which line numbers something is valid: two lists of ranges in the order in which they
/// were added, each with texts of its own. Ranges are kept as given, unsorted and unchecked. Dates are
/// seconds since 1970-01-01 UTC; both ends belong to a range. It hangs on nodes and instances as parameter
/// 0x8b. Class key "qn.k3.effectivity".
class Effectivity : public ReferenceSource {
public:
    virtual unsigned GetDateCount() const = 0;
    /// 0 outside.
    virtual std::int64_t GetDateStart(unsigned index) const = 0;
    virtual std::int64_t GetDateEnd(unsigned index) const = 0;
    /// Always true.
    virtual bool AddDateRange(std::int64_t start, std::int64_t end) = 0;
    /// 0 outside.
    virtual unsigned GetDateStringCount(unsigned index) const = 0;
    /// Empty outside.
    virtual String GetDateString(unsigned index, unsigned stringIndex) const = 0;
    /// False, with nothing changed, outside.
    virtual bool AddDateString(unsigned index, const String& text) = 0;

    virtual unsigned GetLineCount() const = 0;
    virtual std::int32_t GetLineStart(unsigned index) const = 0;
    virtual std::int32_t GetLineEnd(unsigned index) const = 0;
    virtual bool AddLineRange(std::int32_t start, std::int32_t end) = 0;
    virtual unsigned GetLineStringCount(unsigned index) const = 0;
    virtual String GetLineString(unsigned index, unsigned stringIndex) const = 0;
    virtual bool AddLineString(unsigned index, const String& text) = 0;

    static const ClassRecord& StaticClass() {
        static const ClassRecord& record = InternClass("qn::k3::Effectivity");
        return record;
    }
    void* CastTo(const ClassRecord& wanted) override {
        return CastThrough<Effectivity, ReferenceSource>(this, wanted);
    }
};

}  // namespace qn::k3

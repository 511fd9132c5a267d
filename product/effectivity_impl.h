#pragma once

#include "product/effectivity.h"
#include "product/effectivity_ranges.h"

#include <vector>

namespace qn::k3::effectivity_impl {

/// The class behind "qn.k3.effectivity".
class EffectivityImpl final : public Effectivity {
public:
    unsigned GetDateCount() const override;
    std::int64_t GetDateStart(unsigned index) const override;
    std::int64_t GetDateEnd(unsigned index) const override;
    bool AddDateRange(std::int64_t start, std::int64_t end) override;
    unsigned GetDateStringCount(unsigned index) const override;
    String GetDateString(unsigned index, unsigned stringIndex) const override;
    bool AddDateString(unsigned index, const String& text) override;
    unsigned GetLineCount() const override;
    std::int32_t GetLineStart(unsigned index) const override;
    std::int32_t GetLineEnd(unsigned index) const override;
    bool AddLineRange(std::int32_t start, std::int32_t end) override;
    unsigned GetLineStringCount(unsigned index) const override;
    String GetLineString(unsigned index, unsigned stringIndex) const override;
    bool AddLineString(unsigned index, const String& text) override;

    /// Parameters and metadata, then the dates, then the lines. Goes on where a chunk cannot be opened.
    ResultEnum Save(Stream* stream, Context* context) override;
    /// Appends to the ranges that are there, and ends at the first failure.
    ResultEnum Load(Stream* stream, Context* context) override;
    /// kWrongClass unless the source is an `Effectivity`; copies parameters and metadata, no ranges.
    ResultEnum CopyFrom(const Interface* source, unsigned flags) override;
    const char* GetInterfaceName() const override { return kEffectivityKey; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;

private:
    std::vector<DateRange> dates_;
    std::vector<LineRange> lines_;
};

}  // namespace qn::k3::effectivity_impl

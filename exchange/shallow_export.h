#pragma once

#include "frame/host/exchange.h"

namespace qn::exchange {

/// Writes a structure without its geometry, as JSON or as a scene file; see `ShallowArguments`.
class ShallowExport final : public qfxml::ShallowExporter {
public:
    bool Export(const String& text0, const String& text1, const String& text2, Interface* object3,
                Interface* object4, const String& text5, const String& text6, const String& text7,
                const String& text8, Context* context) override;

    const char* GetInterfaceName() const override { return qfxml::ExchangeKey::kShallowExporter; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;
};

}  // namespace qn::exchange

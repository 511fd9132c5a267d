#pragma once

#include "frame/host/exchange.h"

namespace qn::exchange {

/// Asks for the surroundings of a file by query, and brings what a query wants into a scene.
class ContextResolver final : public qfxml::VisualContextResolver {
public:
    /// With a spatial index: asks for the entries whose box meets that of the file's content and that are not
    /// in the file themselves. Without one (an empty name): asks for every occurrence of the file.
    bool Extract(const String& sourceFile, const String& spatialIndexFile, const String& outputFile,
                 Context* context) override;
    /// False if a file could not be loaded (the others are merged), or if the filter wants nothing at all.
    bool Merge(const Var& files, k3::Scene* scene, Context* context) override;
    /// A query that cannot be read gives a filter that wants nothing, so that no caller takes it for the wish
    /// to have everything.
    Var ReadFilter(const String& queryFile, Context* context) override;

    const char* GetInterfaceName() const override { return qfxml::ExchangeKey::kVisualContextResolver; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;
};

}  // namespace qn::exchange

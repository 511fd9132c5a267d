#pragma once

#include "frame/host/exchange.h"

namespace qn::exchange {

/// Writes a scene's tree with the ids and metadata of every level as JSON; long texts become files of the
/// blob folder. An empty file or folder name gives false without a word: the caller has told it.
class MetadataExport final : public qfxml::BrineServerMetadataExport {
public:
    bool Export(k3::Scene* scene, const String& outputFile, const String& blobFolder, bool topLevelOnly,
                Context* context) override;

    const char* GetInterfaceName() const override { return qfxml::ExchangeKey::kMetadataExport; }
    bool IsTypeOf(const char* name) const override;
    static const ClassRecord& StaticClass();
    void* CastTo(const ClassRecord& wanted) override;
};

}  // namespace qn::exchange

// The built module, as the engine finds it.

#include "engine/runtime/module_folder.h"
#include "frame/host/api.h"
#include "frame/host/exchange.h"
#include "tests/support/temp_folder.h"

#include <gtest/gtest.h>

namespace qn::test {
namespace {

TEST(ExchangeModule, IsLoadedWhenOneOfItsClassesIsAskedFor) {
    using namespace qfxml;
    EXPECT_TRUE(CreateAs<BrineServerMetadataExport>(ExchangeKey::kMetadataExport));
    EXPECT_TRUE(CreateAs<ShallowExporter>("QN.QFXML.MBomExporter"));
    EXPECT_TRUE(CreateAs<VisualContextResolver>(ExchangeKey::kVisualContextResolver));
}

TEST(ExchangeModule, GivesEachCallerTheOnlyCount) {
    EXPECT_EQ(api->Create(qfxml::ExchangeKey::kShallowExporter)->GetRefCount(), 1);
}

}  // namespace
}  // namespace qn::test

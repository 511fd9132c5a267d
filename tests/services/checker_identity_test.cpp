#include "tests/services/services_support.h"

namespace qn::test {
namespace {

TEST(HierarchyChecker, KnowsItsNames) {
    const auto checker = Make<graph::HierarchyCheckerImpl>();
    EXPECT_STREQ(checker->GetInterfaceName(), "qn.graph.hierarchychecker");
    EXPECT_TRUE(checker->IsTypeOf("QN.Graph.HierarchyChecker"));
    EXPECT_TRUE(checker->IsTypeOf("k3_extension"));
    EXPECT_FALSE(checker->IsTypeOf("k3_refsource"));
    EXPECT_FALSE(checker->IsTypeOf(nullptr));
}

TEST(HierarchyChecker, CopiesFromValidatorsAlone) {
    const auto checker = Make<graph::HierarchyCheckerImpl>();
    const auto other = Make<graph::HierarchyCheckerImpl>();
    const auto stranger = Make<k3::Object3D>();
    EXPECT_EQ(checker->CopyFrom(other.Get(), 0), ResultEnum::kSuccess);
    EXPECT_EQ(checker->CopyFrom(stranger.Get(), 0), ResultEnum::kWrongClass);
    EXPECT_EQ(checker->CopyFrom(nullptr, 0), ResultEnum::kWrongClass);
}

}  // namespace
}  // namespace qn::test

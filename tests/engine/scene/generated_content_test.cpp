#include "engine/scene/generated_content.h"

#include "engine/runtime/class_table.h"
#include "engine/stream/scene_file.h"
#include "frame/host/params.h"
#include "tests/engine/scene/fake_generator.h"
#include "tests/engine/scene/scene_tests.h"
#include "tests/support/recording_context.h"

namespace qn::k3 {
namespace {

using test::AddNode;
using test::FakeGenerator;
using test::TreeText;

/// A scene with one top node and a generator of two nodes, which were made.
class GeneratedContent : public ::testing::Test {
protected:
    static void SetUpTestSuite() { AddEngineClass({"test.generator", &MakeOf<FakeGenerator>}); }

    void SetUp() override {
        top_ = AddNode(*scene_, L"top");
        generator_ = test::GiveGenerator(*top_, {L"a", L"b"});
    }

    void Generate() { ASSERT_EQ(GenerateMissing(*scene_, context_.Get()), 1); }

    /// The tree as it is in a file.
    std::string Stored(bool expand = false) {
        const std::string bytes = SaveSceneToBytes(*scene_, *context_, {.expand = expand});
        const auto read = Make<Scene>();
        EXPECT_TRUE(LoadSceneFromBytes(bytes, L"test", *read, *context_));
        return read->GetFirstChild() ? TreeText(*read->GetFirstChild()) : "";
    }

    const Counted<Context> context_ = test::MakeContext();
    const Counted<Scene> scene_ = Make<Scene>();
    Node* top_ = nullptr;
    Counted<FakeGenerator> generator_;
};

TEST_F(GeneratedContent, IsMadeWhereItIsMissing) {
    Generate();
    EXPECT_EQ(TreeText(*top_), "top(a b)");
    EXPECT_FALSE(AwaitsGeneration(*top_));
    EXPECT_EQ(GenerateMissing(*scene_, context_.Get()), 0);
}

TEST_F(GeneratedContent, ARefusingGeneratorIsReported) {
    generator_->refuses = true;
    EXPECT_EQ(GenerateMissing(*scene_, context_.Get()), -1);
}

TEST_F(GeneratedContent, AFailureInTheContextEndsTheWalk) {
    generator_->failsWith = LoadFailure::kLimit;
    EXPECT_EQ(GenerateMissing(*scene_, context_.Get()), -1);
    EXPECT_FALSE(CanGenerateChildren(*top_)) << "what is there is not all";
}

TEST_F(GeneratedContent, GeneratorsBelowGeneratedNodesRunToo) {
    const auto node = AddNode(*scene_, L"plain");
    test::GiveGenerator(*AddNode(*node, L"nested"), {L"c"});
    EXPECT_EQ(GenerateMissing(*scene_, context_.Get()), 2);
    EXPECT_EQ(TreeText(*node), "plain(nested(c))");
}

TEST_F(GeneratedContent, IsNotStoredBeforeItWasMade) {
    EXPECT_EQ(Stored(), "top");
}

TEST_F(GeneratedContent, IsNotStoredWhileUntouched) {
    Generate();
    EXPECT_EQ(Stored(), "top");
}

TEST_F(GeneratedContent, IsStoredWhenTheWriterIsToExpand) {
    Generate();
    EXPECT_EQ(Stored(true), "top(a b)");
}

TEST_F(GeneratedContent, IsStoredWithoutARootToMakeItFrom) {
    Generate();
    generator_->hasRoot = false;
    EXPECT_EQ(Stored(), "top(a b)");
}

TEST_F(GeneratedContent, IsStoredWhenANodeChanged) {
    Generate();
    top_->GetFirstChild()->SetName(L"x");
    EXPECT_EQ(Stored(), "top(x b)");
}

TEST_F(GeneratedContent, IsStoredWhenAParameterChanged) {
    Generate();
    top_->GetLastChild()->SetParamVar(Param::kBsId, Var(L"s1:0"));
    EXPECT_EQ(Stored(), "top(a b)");
}

TEST_F(GeneratedContent, IsStoredWhenANodeWasAdded) {
    Generate();
    AddNode(*top_->GetFirstChild(), L"c");
    EXPECT_EQ(Stored(), "top(a(c) b)");
}

TEST_F(GeneratedContent, IsStoredWhenANodeWasRemoved) {
    Generate();
    top_->_RemoveChild(top_->GetFirstChild(), true);
    EXPECT_EQ(Stored(), "top(b)");
}

TEST_F(GeneratedContent, AnEmptiedNodeStaysEmpty) {
    Generate();
    while (Node* child = top_->GetFirstChild())
        top_->_RemoveChild(child, true);
    const std::string bytes = SaveSceneToBytes(*scene_, *context_);
    const auto read = Make<Scene>();
    ASSERT_TRUE(LoadSceneFromBytes(bytes, L"test", *read, *context_));
    EXPECT_FALSE(AwaitsGeneration(*read->GetFirstChild()));
}

TEST_F(GeneratedContent, ChangesOfTheTopItselfDoNotCount) {
    Generate();
    top_->SetName(L"renamed");
    top_->SetFlags(1);
    EXPECT_EQ(Stored(), "renamed");
}

TEST_F(GeneratedContent, ChangesElsewhereDoNotCount) {
    Node* other = AddNode(*scene_, L"other");
    test::GiveGenerator(*other, {L"c"});
    ASSERT_EQ(GenerateMissing(*scene_, context_.Get()), 2);
    other->GetFirstChild()->SetName(L"x");
    EXPECT_EQ(Stored(), "top");
}

TEST_F(GeneratedContent, MetadataEditedInPlaceIsNoticed) {
    Generate();
    VarMap* metadata = top_->GetFirstChild()->GetMetadata(true);
    metadata->At(Var(L"k")) = Var(1);
    MarkGenerated(*top_);
    EXPECT_TRUE(CanGenerateChildren(*top_));
    metadata->At(Var(L"k")) = Var(2);
    EXPECT_FALSE(CanGenerateChildren(*top_));
}

TEST_F(GeneratedContent, AParameterEditedInTheTableIsNoticed) {
    Generate();
    top_->GetFirstChild()->SetParamVar(Param::kBsId, Var(L"1"));
    MarkGenerated(*top_);
    EXPECT_TRUE(CanGenerateChildren(*top_));
    top_->GetFirstChild()->GetParams(false)->SetParamVar(Param::kBsId, Var(L"2"));
    EXPECT_FALSE(CanGenerateChildren(*top_));
}

TEST_F(GeneratedContent, AContainerParameterEditedInPlaceIsNoticed) {
    Generate();
    top_->GetFirstChild()->SetParamVar(Param::kLinkList, Var(VarArray::Create(1)));
    MarkGenerated(*top_);
    EXPECT_TRUE(CanGenerateChildren(*top_));
    top_->GetFirstChild()->GetParamVar(Param::kLinkList).ToArray()->Set(0, Var(1));
    EXPECT_FALSE(CanGenerateChildren(*top_));
}

TEST_F(GeneratedContent, IsStoredWhenALayerPointsAtIt) {
    Generate();
    scene_->CreateLayer(L"l")->AddNode(top_->GetFirstChild());
    EXPECT_EQ(Stored(), "top(a b)");
}

TEST_F(GeneratedContent, IsStoredWhenAViewportPointsAtIt) {
    Generate();
    scene_->CreateViewport(L"v")->SetViewNode(top_->GetLastChild());
    EXPECT_EQ(Stored(), "top(a b)");
}

TEST_F(GeneratedContent, IsStoredWhenAParameterOfAViewportPointsAtIt) {
    Generate();
    Var rows;
    rows.InitArray(1);
    rows.At(0) = Var(top_->GetFirstChild(), 0);
    scene_->CreateViewport(L"v")->SetParamVar(Param::kViewportRows, rows);
    EXPECT_EQ(Stored(), "top(a b)");
}

TEST_F(GeneratedContent, AViewThatWasDeletedDoesNotCount) {
    Generate();
    Viewport* view = scene_->CreateViewport(L"v");
    view->SetViewNode(top_->GetLastChild());
    EXPECT_EQ(Stored(), "top(a b)");
    scene_->DeleteObject(view, 0);
    EXPECT_EQ(Stored(), "top");
}

TEST_F(GeneratedContent, StoredNodesAreNotMadeAgainAfterALoad) {
    Generate();
    top_->GetFirstChild()->SetName(L"x");
    const std::string bytes = SaveSceneToBytes(*scene_, *context_);
    const auto read = Make<Scene>();
    ASSERT_TRUE(LoadSceneFromBytes(bytes, L"test", *read, *context_));
    EXPECT_EQ(GenerateMissing(*read, context_.Get()), 0);
    EXPECT_EQ(TreeText(*read->GetFirstChild()), "top(x b)");
    EXPECT_EQ(SaveSceneToBytes(*read, *context_), bytes);
}

TEST_F(GeneratedContent, GivesTheSameBytesBeforeAndAfterItWasMade) {
    const std::string before = SaveSceneToBytes(*scene_, *context_);
    Generate();
    EXPECT_EQ(SaveSceneToBytes(*scene_, *context_), before);
}

TEST_F(GeneratedContent, IsMadeAfterALoad) {
    const std::string bytes = SaveSceneToBytes(*scene_, *context_);
    const auto read = Make<Scene>();
    ASSERT_TRUE(LoadSceneFromBytes(bytes, L"test", *read, *context_));
    EXPECT_EQ(GenerateMissing(*read, context_.Get()), 1);
    EXPECT_EQ(TreeText(*read->GetFirstChild()), "top(a b)");
}

}  // namespace
}  // namespace qn::k3

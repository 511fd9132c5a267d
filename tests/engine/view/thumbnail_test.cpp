#include "engine/view/thumbnail.h"

#include "engine/stream/object_file.h"
#include "engine/view/camera.h"
#include "engine/view/picture.h"
#include "frame/host/scene.h"
#include "tests/support/recording_context.h"

#include <gtest/gtest.h>

#include <limits>

namespace qn::view {
namespace {

using k3::Node;
using k3::Scene;
using k3::ViewKind;
using k3::Viewport;

constexpr int kPixels = 32;
constexpr Colour kWhite{255, 255, 255};

/// A square of side 10 with its corner at the origin, in the plane z = 0, of one colour.
Counted<k3::Mesh> Square(const std::array<float, 4>& colour = {1, 0, 0, 1}) {
    auto mesh = Make<k3::Mesh>();
    const auto material = Make<k3::Material>();
    material->SetColour(colour);
    const auto slot = static_cast<std::uint32_t>(mesh->AddSlot(material.Get()));
    mesh->SetGeometry({0, 0, 0, 10, 0, 0, 10, 10, 0, 0, 10, 0}, {}, {0, 1, 2, 0, 2, 3}, {{0, 6, slot}});
    return mesh;
}

class Thumbnail : public testing::Test {
protected:
    Node* AddMesh(k3::Mesh* mesh, double x = 0, double y = 0, double z = 0, Node* parent = nullptr) {
        Node* const node = parent ? parent->CreateChildNode(0, 0, 0) : scene->CreateEmptyNode(0, 0, 0);
        node->SetObject(mesh);
        const auto place = Matrix4<double>::Translation(x, y, z);
        node->SetMatrix(&place, 0);
        return node;
    }
    Viewport* AddView(ViewKind kind) {
        Viewport* const made = scene->CreateViewport(L"view");
        made->SetKind(kind);
        return made;
    }
    /// A view straight down the z axis.
    Viewport* AddTopView() {
        Viewport* const made = AddView(ViewKind::kModel);
        made->SetViewNode(scene->CreateEmptyNode(0, 0, 0));
        return made;
    }
    Raster Draw(const Viewport* of) { return DrawView(*scene, *of, kPixels); }
    static int Drawn(const Raster& picture) {
        int count = 0;
        for (int y = 0; y < kPixels; ++y)
            for (int x = 0; x < kPixels; ++x)
                count += picture.At(x, y) != kWhite;
        return count;
    }

    const Counted<Scene> scene = Make<Scene>();
};

TEST_F(Thumbnail, IsBlankForAnEmptyScene) {
    EXPECT_EQ(Drawn(Draw(AddView(ViewKind::kModel))), 0);
}

TEST_F(Thumbnail, FitsWhatIsThereWhereverItStands) {
    AddMesh(Square().Get(), 1e6, -1e6, 3);
    const Raster picture = Draw(AddTopView());
    EXPECT_NEAR(Drawn(picture), 0.81 * kPixels * kPixels, 2 * kPixels);
    EXPECT_EQ(picture.At(0, 0), kWhite);
    EXPECT_EQ(picture.At(kPixels / 2, kPixels / 2), (Colour{255, 0, 0}));
}

TEST_F(Thumbnail, LooksFromItsViewNode) {
    AddMesh(Square().Get());
    Viewport* const view = AddTopView();
    Matrix4<double> fromTheSide;  // toward the viewer is x
    fromTheSide.m[2][0] = 1, fromTheSide.m[2][2] = 0;
    fromTheSide.m[1][1] = 0, fromTheSide.m[1][2] = 1;
    fromTheSide.m[0][0] = 0, fromTheSide.m[0][1] = 1;
    view->GetViewNode()->SetMatrix(&fromTheSide, 0);
    EXPECT_EQ(Drawn(Draw(view)), 0);  // on edge
}

TEST_F(Thumbnail, IsIsometricWithoutViewNode) {
    AddMesh(Square().Get());
    const int drawn = Drawn(Draw(AddView(ViewKind::kModel)));
    EXPECT_GT(drawn, kPixels);
    EXPECT_LT(drawn, kPixels * kPixels / 2);
}

TEST_F(Thumbnail, ShowsTheNearerPart) {
    AddMesh(Square({1, 0, 0, 1}).Get(), 0, 0, 0);
    AddMesh(Square({0, 0, 1, 1}).Get(), 0, 0, 5);
    EXPECT_EQ(Draw(AddTopView()).At(kPixels / 2, kPixels / 2), (Colour{0, 0, 255}));
}

TEST_F(Thumbnail, LeavesHiddenNodesOutWithWhatIsBelow) {
    Node* const hidden = AddMesh(Square().Get());
    AddMesh(Square().Get(), 0, 0, 0, hidden);
    hidden->SetVisible(0);
    EXPECT_EQ(Drawn(Draw(AddTopView())), 0);
}

TEST_F(Thumbnail, ShowsTheMembersOfItsLayerWithWhatIsBelow) {
    AddMesh(Square({1, 0, 0, 1}).Get());
    Node* const group = scene->CreateEmptyNode(0, 0, 0);
    AddMesh(Square({0, 0, 1, 1}).Get(), 100, 0, 0, group);
    Viewport* const view = AddTopView();
    view->SetLayer(scene->CreateLayer(L"layer"));
    EXPECT_EQ(Draw(view).At(kPixels / 2, kPixels / 2), kWhite);  // an empty layer: both, far apart
    view->GetLayer()->AddNode(group);
    EXPECT_EQ(Draw(view).At(kPixels / 2, kPixels / 2), (Colour{0, 0, 255}));
}

TEST_F(Thumbnail, ShowsWhatASubstitutionStandsFor) {
    const auto substitution = Make<k3::MaterialSubstitution>();
    substitution->SetSubstituted(Square().Get());
    scene->CreateEmptyNode(0, 0, 0)->SetObject(substitution.Get());
    EXPECT_GT(Drawn(Draw(AddTopView())), 0);
}

TEST_F(Thumbnail, MakesADotOfAPartThatIsTooSmall) {
    AddMesh(Square().Get());
    AddMesh(Square().Get(), 1e6, 1e6, 0);
    EXPECT_EQ(Drawn(Draw(AddTopView())), 2);
}

TEST_F(Thumbnail, SurvivesPositionsThatAreNoNumbers) {
    const float infinity = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const auto mesh = Make<k3::Mesh>();
    mesh->SetGeometry({0, 0, 0, infinity, 0, 0, 0, nan, 0, 3e38f, -3e38f, 0}, {}, {0, 1, 2, 0, 1, 3},
                      {{3, 3, 7}});
    AddMesh(mesh.Get());
    AddMesh(Square().Get());
    Draw(AddTopView());
}

TEST_F(Thumbnail, IsKeptWithTheViewsOfTheKindAskedFor) {
    AddMesh(Square().Get());
    const Viewport* const model = AddView(ViewKind::kModel);
    const Viewport* const step = AddView(ViewKind::kStep);
    const Viewport* const detail = AddView(ViewKind::kDetail);
    const Viewport* const other = AddView(ViewKind::kOther);
    EXPECT_TRUE(GetThumbnail(*model).empty());
    views::ViewUpdater::UpdateSceneModelViewThumbnails(scene.Get());
    EXPECT_EQ(GetThumbnail(*model).substr(1, 3), "PNG");
    EXPECT_TRUE(GetThumbnail(*step).empty());
    views::ViewUpdater::UpdateSceneStepViewThumbnails(scene.Get());
    EXPECT_FALSE(GetThumbnail(*step).empty());
    EXPECT_TRUE(GetThumbnail(*detail).empty());
    views::ViewUpdater::UpdateSceneDetailViewThumbnails(scene.Get());
    EXPECT_FALSE(GetThumbnail(*detail).empty());
    EXPECT_TRUE(GetThumbnail(*other).empty());
}

TEST_F(Thumbnail, IsSavedWithTheView) {
    AddMesh(Square().Get());
    AddView(ViewKind::kModel);
    views::ViewUpdater::UpdateSceneModelViewThumbnails(scene.Get());
    const auto* const view = Cast<Viewport>(scene->GetViewports()->Get(0));
    const std::string before(GetThumbnail(*view));
    const auto context = test::MakeContext();
    const std::string bytes = SaveToBytes(*scene, *context);
    const auto read = CountedCast<Scene>(LoadFromBytes(bytes, *context));
    ASSERT_TRUE(read);
    EXPECT_EQ(GetThumbnail(*Cast<Viewport>(read->GetViewports()->Get(0))), before);
}

TEST_F(Thumbnail, NeedsNoStackForDeepTrees) {
    Node* node = nullptr;
    for (int level = 0; level < 20000; ++level)
        node = AddMesh(nullptr, 0, 0, 0, node);
    node->SetObject(Square().Get());
    EXPECT_GT(Drawn(Draw(AddTopView())), 0);
}

TEST(Axes, AreIsometricWhereACameraHasNoDirections) {
    Matrix4<double> nothing;
    nothing.m[2][2] = 0;
    EXPECT_EQ(AxesOf(nothing).toward, IsometricAxes().toward);
    nothing.m[2][2] = 1, nothing.m[1][1] = 0;
    EXPECT_EQ(AxesOf(nothing).right, IsometricAxes().right);
}

TEST(Axes, StandAtRightAnglesEvenForASkewCamera) {
    Matrix4<double> skew;
    skew.m[1][2] = 3, skew.m[2][2] = 5;
    const Axes axes = AxesOf(skew);
    EXPECT_NEAR(Dot(axes.up, axes.toward), 0, 1e-12);
    EXPECT_NEAR(Dot(axes.right, axes.up), 0, 1e-12);
    EXPECT_NEAR(Dot(axes.up, axes.up), 1, 1e-12);
}

}  // namespace
}  // namespace qn::view

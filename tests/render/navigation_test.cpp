#include "render/navigation.h"

#include <gmock/gmock.h>

#include <cmath>

#include "device/direct3d.h"
#include "render/camera.h"
#include "render/closer_look.h"
#include "render/picture_view.h"
#include "support/recording_desktop.h"

namespace facet {
namespace {

/// A mesh of one triangle that lies in the plane of this z and faces those who look along +z.
Mesh triangleAt(float z, float scale, const Vector3& middle) {
  Mesh mesh;
  allocateVertices(mesh, 3);
  allocateIndices(mesh, 3);
  const float corners[3][2] = {{-1, -1}, {0, 1}, {1, -1}};
  for (uint16_t i = 0; i < 3; ++i) {
    mesh.vertices[i] = {middle.x + scale * corners[i][0], middle.y + scale * corners[i][1], middle.z + z, 0,
                        0};
    mesh.normals[i] = {0, 0, -1};
    mesh.indices[i] = i;
  }
  return mesh;
}

/// A view of two triangles, the first nearer, drawn by the software device in a picture of 200 x 100.
struct TwoTriangles {
  explicit TwoTriangles(float scale = 1, const Vector3& middle = {}) {
    PictureSettings settings;
    settings.width = 200;
    settings.height = 100;
    settings.renderMode = renderLit;
    settings.yaw = settings.pitch = 0;
    picture = std::make_unique<PictureView>(settings);
    auto model = std::make_unique<Model>();
    model->device = picture->device();
    model->materials.resize(1 + skyMaterialCount);
    model->materialCount = 1 + skyMaterialCount;
    model->meshes.push_back(triangleAt(0, scale, middle));
    model->meshes.push_back(triangleAt(scale, 2 * scale, middle));
    model->meshCount = 2;
    finishModel(*model);
    picture->show(std::move(model));
    view().clientWidth = 200;
    view().clientHeight = 100;
    frameVisible(view());
    renderFrame(view());
  }
  ModelView& view() const { return picture->view(); }

  RecordingDesktop desktop;
  std::unique_ptr<PictureView> picture;
};

TEST(Frame, ShowsModelsOfAnySizeWhole) {
  for (const float scale : {0.001f, 1.0f, 1e5f})
    for (const bool parallel : {false, true}) {
      const TwoTriangles shown(scale, {scale, -3 * scale, 0});
      if (parallel) {
        toggleOrthographic(shown.view());
        frameVisible(shown.view());
      }
      for (const Mesh& mesh : shown.view().scene.model->meshes)
        for (uint32_t i = 0; i < 3; ++i) {
          const Vertex& v = mesh.vertices[i];
          EXPECT_TRUE(project(shown.view(), {v.x, v.y, v.z})) << scale << ' ' << parallel;
        }
    }
}

TEST(Pick, TakesTheNearestTriangleThatIsDrawn) {
  const TwoTriangles shown;
  ModelView& view = shown.view();
  const auto mesh = [&](Point point) {
    const auto hit = pick(view, point);
    return hit ? static_cast<int>(hit->mesh) : -1;
  };
  const Point middle{100, 50};
  EXPECT_EQ(mesh(middle), 0);
  EXPECT_NEAR(pick(view, middle)->position.z, 0, 1e-3);
  EXPECT_EQ(mesh({1, 1}), -1);
  view.scene.model->meshes[0].hidden = true;
  EXPECT_EQ(mesh(middle), 1);
  EXPECT_NEAR(pick(view, middle)->position.z, 1, 1e-3);
  lookFrom(view, {180, 0});  // from behind nothing is drawn, but wires are
  EXPECT_EQ(mesh(middle), -1);
  view.settings.renderMode = renderWireframe;
  EXPECT_EQ(mesh(middle), 1);
  view.scene.model->meshes[1].indices[0] = 9;
  EXPECT_EQ(mesh(middle), -1) << "an index beyond the vertices";
}

TEST(Orbit, KeepsTheDistanceOfThePivotAndUpIsUp) {
  const TwoTriangles shown;
  ModelView& view = shown.view();
  const auto distance = [&] {
    const Vector3 &e = view.camera.eyePosition, &p = view.camera.pivot;
    return std::hypot(e.x - p.x, e.y - p.y, e.z - p.z);
  };
  const float before = distance();
  const Vector3 pivot = view.camera.pivot;
  for (const Point drag : {Point{40, 10}, {-300, 25}, {7, 4000}, {5, -9000}}) {
    orbit(view, drag);
    EXPECT_NEAR(distance(), before, 1e-4 * before);
    EXPECT_LE(std::fabs(view.camera.pitch), 90);
    const auto seen = project(view, pivot);
    ASSERT_TRUE(seen);
    EXPECT_NEAR(seen->x, 100, 1);
    EXPECT_NEAR(seen->y, 50, 1);
  }
}

TEST(PanAndZoom, KeepWhatIsUnderThePointerThere) {
  const TwoTriangles shown;
  ModelView& view = shown.view();
  for (const bool parallel : {false, true}) {
    if (parallel) toggleOrthographic(view);
    frameVisible(view);
    const Vector3 pivot = view.camera.pivot;
    pan(view, {30, -12});
    auto seen = project(view, pivot);
    ASSERT_TRUE(seen);
    EXPECT_NEAR(seen->x, 130, 1);
    EXPECT_NEAR(seen->y, 38, 1);
    const Point at = *seen;
    zoom(view, 3, at);
    seen = project(view, pivot);
    ASSERT_TRUE(seen);
    EXPECT_NEAR(seen->x, at.x, 1);
    EXPECT_NEAR(seen->y, at.y, 1);
  }
}

/// How many pixels differ from the plain picture when a setting is on.
size_t changed(const TwoTriangles& shown, bool ViewSettings::*setting) {
  const Picture plain = shown.picture->draw();
  shown.view().settings.*setting = true;
  shown.view().scene.buffersBuilt = false;
  const Picture looked = shown.picture->draw();
  shown.view().settings.*setting = false;
  shown.view().scene.buffersBuilt = false;
  size_t count = 0;
  for (size_t i = 0; i < plain.pixels.size(); i += 4)
    count += !std::equal(&plain.pixels[i], &plain.pixels[i] + 3, &looked.pixels[i]) ? 1 : 0;
  return count;
}

TEST(CloserLook, DrawsOverTheModelAndLeavesNothingBehind) {
  const TwoTriangles shown;
  shown.view().settings.envMode = true;  // no grid
  lookFrom(shown.view(), {30, 20});
  const Picture before = shown.picture->draw();
  EXPECT_GT(changed(shown, &ViewSettings::wires), 50u);
  EXPECT_GT(changed(shown, &ViewSettings::boxes), 50u);
  EXPECT_GT(changed(shown, &ViewSettings::normals), 0u);
  EXPECT_GT(changed(shown, &ViewSettings::uvChecker), 200u);
  shown.view().scene.selected = {1};
  EXPECT_NE(shown.picture->draw().pixels, before.pixels);
  shown.view().scene.selected.clear();
  EXPECT_EQ(shown.picture->draw().pixels, before.pixels);
  shown.view().scene.measured = {{0, 0, 0}, {3, 4, 0}};
  EXPECT_EQ(measuredDistance(shown.view().scene), 5.0f);
  EXPECT_NE(shown.picture->draw().pixels, before.pixels);
}

}  // namespace
}  // namespace facet

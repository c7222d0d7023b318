#include "commands/looking.h"

#include <gmock/gmock.h>

#include "commands/recorded_viewer.h"

namespace facet {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

TEST(CameraText, GivesTheSameCameraAgain) {
  RecordedViewer recorded;
  ModelView& view = recorded.viewer.view;
  Camera& camera = view.camera;
  camera = {
      .pitch = 12.3f, .yaw = -400.1f, .roll = 15, .fovDegrees = 47.5f, .eyePosition = {1e-7f, 3.1f, -1e6f}};
  for (const float height : {0.0f, 12.25f}) {
    camera.orthoHeight = height;
    camera.nearZ = height > 0 ? -700.0f : 0.125f;
    camera.farZ = 700;
    view.settings.noDistanceCut = true;
    const Camera copied = camera;
    const std::string text = cameraOptions(view);
    camera = {};
    view.settings.noDistanceCut = false;
    EXPECT_EQ(applyCameraOptions(view, "facetbench render -o a.png " + text), "");
    EXPECT_EQ(camera.eyePosition, copied.eyePosition);
    EXPECT_EQ(cameraOptions(view), text);
    EXPECT_TRUE(view.settings.noDistanceCut);
  }
}

TEST(CameraText, IsRefusedWholeWhereItIsNoCamera) {
  RecordedViewer recorded;
  ModelView& view = recorded.viewer.view;
  const std::string before = cameraOptions(view);
  for (const char* text :
       {"", "hello", "--pitch=3", "--eye=1,2", "--eye=1,2,3,4", "--eye=1,nan,3", "--eye=1,2,3 --fov=0",
        "--eye=1,2,3 --planes=5,1", "--eye=1,2,3 --planes=-1,1", "--eye 1,2,3 --yaw", "--eye=1,2,inf"}) {
    EXPECT_NE(applyCameraOptions(view, text), "") << text;
    EXPECT_EQ(cameraOptions(view), before) << text;
  }
}

TEST(Meshes, AreSelectedHiddenAndShownAgain) {
  RecordedViewer recorded;
  Viewer& viewer = recorded.viewer;
  recorded.loadFrom({"a.vxm"}, 0);
  Scene& scene = viewer.view.scene;
  const uint32_t count = scene.model->meshCount;
  selectMeshes(viewer, {0, count, 0, UINT32_MAX});
  EXPECT_THAT(scene.selected, ElementsAre(0));
  OnKeyDown(viewer, 'H');
  EXPECT_THAT(scene.selected, IsEmpty());
  EXPECT_EQ(hiddenCount(viewer), 1u);
  EXPECT_THAT(viewer.note, HasSubstr("1 of "));
  OnKeyDown(viewer, 'R');
  EXPECT_EQ(hiddenCount(viewer), 1u) << "a model that is loaded anew keeps its hidden meshes";
  showAll(viewer);
  EXPECT_EQ(hiddenCount(viewer), 0u);
  OnKeyDown(viewer, 'Q');
  EXPECT_EQ(hiddenCount(viewer), 0u) << "with nothing selected nothing is hidden";
}

}  // namespace
}  // namespace facet

#include "commands/key_handler.h"

#include <algorithm>

#include "commands/display.h"
#include "commands/model_data.h"
#include "commands/open_model.h"
#include "commands/save_model.h"
#include "commands/statistics_log.h"
#include "platform/desktop.h"
#include "render/camera.h"
#include "render/filtering.h"
#include "render/frame.h"

namespace facet {

namespace {

/// Whether the picture is drawn after an action.
enum class Frame { drawn, none };

template <class Index>
void cycle(Index& index, size_t count) {
  index = static_cast<Index>((index + 1u) % count);
}

void rebuildProjection(ModelView& view) {
  OnSize(view, view.clientWidth, view.clientHeight);
}

Frame toggleGrid(Viewer& viewer) {
  viewer.view.envMode = !viewer.view.envMode;
  return Frame::drawn;
}

Frame stepLight(Viewer& viewer) {
  ModelView& view = viewer.view;
  cycle(view.lightMode, 3);
  if (view.renderMode == renderTextured) setTextureStage(view, view.lightMode != lightOff);
  return Frame::drawn;
}

Frame stepDrawingMode(Viewer& viewer) {
  ModelView& view = viewer.view;
  view.buffersBuilt = false;
  cycle(view.renderMode, 3);
  view.lightMode = lightOff;
  return Frame::drawn;
}

Frame stepFov(Viewer& viewer) {
  ModelView& view = viewer.view;
  view.fovDegrees += 5;
  if (view.fovDegrees >= 100) view.fovDegrees = 47.5f;
  rebuildProjection(view);
  return Frame::drawn;
}

template <int direction>
Frame stepAspect(Viewer& viewer) {
  ModelView& view = viewer.view;
  constexpr int count = monitorAspects.size();
  view.aspectIndex = static_cast<int8_t>((view.aspectIndex + direction + count) % count);
  statusPrint("> Aspect ratio: %s", monitorAspects[view.aspectIndex].name);
  rebuildProjection(view);
  return Frame::drawn;
}

Frame centerCamera(Viewer& viewer) {
  if (viewer.view.model) viewer.view.eyePosition = viewer.view.model->center;
  return Frame::drawn;
}

Frame resetAll(Viewer& viewer) {
  ModelView& view = viewer.view;
  view.backgroundIndex = 2;  // clearColor stays: the next background step goes on from here
  view.noDistanceCut = false;
  view.lightMode = lightOff;
  view.envMode = false;
  view.moveSpeed = 0.1f;
  view.envTime = 0;
  view.moveForward = view.moveUp = view.moveSide = 0;
  view.roll = view.yaw = view.pitch = 0;
  view.fovDegrees = 47.5f;
  view.eyePosition = {0, 3, -10};
  rebuildProjection(view);
  return Frame::drawn;
}

Frame toggleDistanceCut(Viewer& viewer) {
  viewer.view.noDistanceCut = !viewer.view.noDistanceCut;
  return Frame::drawn;
}

Frame toggleQuality(Viewer& viewer) {
  if (viewer.view.smoothShading)
    setLowQuality(viewer.view);
  else
    setHighQuality(viewer.view);
  return Frame::drawn;
}

Frame stepFiltering(Viewer& viewer) {
  ModelView& view = viewer.view;
  if (!view.model || view.renderMode != renderTextured) return Frame::drawn;
  cycle(view.filterMode, filterModes.size());
  statusPrint("%s", filterModes[view.filterMode].statusText);
  applyFiltering(view, view.filterMode);
  return Frame::drawn;
}

Frame stepBackground(Viewer& viewer) {
  ModelView& view = viewer.view;
  cycle(view.backgroundIndex, backgroundTable.size());
  view.clearColor = backgroundColor(view.backgroundIndex);
  return Frame::drawn;
}

Frame stepGamma(Viewer& viewer) {
  changeGamma(viewer.view);
  return Frame::none;
}

Frame systemInformationBox(Viewer& viewer) {
  showSystemInformation(viewer.view);
  return Frame::drawn;
}

Frame dumpStatistics(Viewer& viewer) {
  const ModelView& view = viewer.view;
  const bool failed = view.model && !writeStatisticsLog(*view.model, view.texturePath);
  return failed ? Frame::none : Frame::drawn;
}

Frame flipFullscreen(Viewer& viewer) {
  toggleFullscreen(viewer);
  return Frame::none;
}

Frame increaseTime(Viewer& viewer) {
  float& time = viewer.view.envTime;
  time += 1;
  if (time > 24) time = 0;
  return Frame::drawn;
}

Frame decreaseTime(Viewer& viewer) {
  float& time = viewer.view.envTime;
  time -= 1;
  if (time < 0) time = 23;
  return Frame::drawn;
}

Frame sunriseOrSunset(Viewer& viewer) {
  float& time = viewer.view.envTime;
  time = time == 6 ? 18 : 6;
  return Frame::drawn;
}

Frame noon(Viewer& viewer) {
  viewer.view.envTime = 12;
  return Frame::drawn;
}

template <float ModelView::*move, int direction>
Frame step(Viewer& viewer) {
  viewer.view.*move += direction * viewer.view.moveSpeed;
  return Frame::drawn;
}

template <float ModelView::*angle, int degrees>
Frame turn(Viewer& viewer) {
  viewer.view.*angle += degrees;
  return Frame::drawn;
}

Frame faster(Viewer& viewer) {
  viewer.view.moveSpeed *= 4;
  return Frame::none;
}

Frame slower(Viewer& viewer) {
  viewer.view.moveSpeed *= 0.25f;
  return Frame::none;
}

Frame browse(Viewer& viewer, int32_t target) {
  if (!viewer.view.model) return Frame::none;
  browseModelFile(viewer, target);
  return Frame::drawn;
}

Frame browseFirst(Viewer& viewer) {
  return browse(viewer, 0);
}
Frame browsePrevious(Viewer& viewer) {
  const int32_t index = viewer.view.fileIndex;
  if (viewer.view.model && index <= 0) return Frame::drawn;
  return browse(viewer, index - 1);
}
Frame browseNext(Viewer& viewer) {
  return browse(viewer, viewer.view.fileIndex + 1);
}
Frame browseLast(Viewer& viewer) {
  return browse(viewer, -1);
}

Frame save(Viewer& viewer) {
  saveModelFile(viewer);
  return Frame::drawn;
}

Frame open(Viewer& viewer) {
  openModelFile(viewer);
  return Frame::none;
}

struct KeyAction {
  uint8_t key;  ///< of several that do the same, the one that the command sends
  Frame (*run)(Viewer& viewer);
};

constexpr KeyAction actions[] = {
    {VK_F1, toggleGrid},
    {VK_F4, stepLight},
    {VK_TAB, stepDrawingMode},
    {VK_F5, stepFov},
    {'5', stepAspect<-1>},
    {'6', stepAspect<1>},
    {VK_F12, centerCamera},
    {VK_BACK, resetAll},
    {'N', toggleDistanceCut},
    {VK_F6, toggleQuality},
    {VK_F9, stepFiltering},
    {VK_MULTIPLY, stepBackground},
    {VK_DIVIDE, stepGamma},
    {'I', systemInformationBox},
    {'T', dumpStatistics},
    {VK_F11, flipFullscreen},
    {VK_ADD, increaseTime},
    {VK_SUBTRACT, decreaseTime},
    {'9', sunriseOrSunset},
    {'0', noon},
    {VK_DELETE, step<&ModelView::moveSide, 1>},
    {VK_NEXT, step<&ModelView::moveSide, -1>},
    {VK_CONTROL, step<&ModelView::moveUp, 1>},
    {VK_SHIFT, step<&ModelView::moveUp, -1>},
    {VK_DOWN, step<&ModelView::moveForward, 1>},
    {VK_UP, step<&ModelView::moveForward, -1>},
    {VK_HOME, turn<&ModelView::pitch, -5>},
    {VK_END, turn<&ModelView::pitch, 5>},
    {VK_LEFT, turn<&ModelView::yaw, -5>},
    {VK_RIGHT, turn<&ModelView::yaw, 5>},
    {VK_PRIOR, turn<&ModelView::roll, -5>},
    {VK_INSERT, turn<&ModelView::roll, 5>},
    {VK_F7, faster},
    {VK_F8, slower},
    {'Z', browseFirst},
    {'X', browsePrevious},
    {'C', browseNext},
    {'V', browseLast},
    {VK_F2, save},
    {VK_F3, open},
};

/// The key that the command of this key sends; a key without a command is its own.
uint32_t sentKey(uint32_t key) {
  for (const Command& command : commandTable())
    if (key != 0 && std::ranges::count(command.keys, key) != 0) return command.keys[0];
  return key;
}

}  // namespace

void OnKeyDown(Viewer& viewer, uint32_t key) {
  const auto action = std::ranges::find(actions, sentKey(key), &KeyAction::key);
  if (action == std::end(actions)) return;
  if (action->run(viewer) == Frame::drawn) renderFrame(viewer.view);
}

void OnViewCommand(Viewer& viewer, uint32_t id) {
  if (id == ID_PROPERTIES) {
    if (viewer.view.model) showModelData(*viewer.view.model);
    return;
  }
  if (const Command* command = findCommand(id)) OnKeyDown(viewer, command->keys[0]);
}

bool OnCommand(Viewer& viewer, uint32_t id) {
  switch (id) {
    case ID_FILE_NEW:
      closeModel(viewer.view);
      return true;
    case ID_FILE_OPEN:
      openModelFile(viewer);
      return true;
    case ID_FILE_SAVE_AS:
      saveModelFile(viewer);
      return true;
    default:
      break;
  }
  if (id > ID_STATISTICS_LOG || findCommand(id) == nullptr) return false;
  OnViewCommand(viewer, id);
  return true;
}

}  // namespace facet

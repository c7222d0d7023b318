#include "render/view.h"

#include <algorithm>
#include <cstdio>
#include <new>

#include "render/camera.h"
#include "render/closer_look.h"
#include "render/navigation.h"
#include "render/render_system.h"
#include "render/scene.h"

namespace facet {

namespace {

/// Shows the meshes that come near the point ahead of the eye; heights do not count.
void cutByDistance(ModelView& view, const Vector3& forward) {
  constexpr float reach = 69.3f;
  const float x = view.camera.eyePosition.x + reach * forward.x;
  const float z = view.camera.eyePosition.z + reach * forward.z;
  for (Mesh& mesh : view.scene.model->meshes) {
    if (mesh.visibility == 2) continue;
    const float near = mesh.radius + reach, dx = mesh.center.x - x, dz = mesh.center.z - z;
    mesh.visibility = view.settings.noDistanceCut || near * near >= dx * dx + dz * dz ? 1 : 0;
  }
}

void drawScene(ModelView& view) {
  IDirect3DDevice9& device = *view.system.p_device;
  moveCamera(view);
  const Vector3 forward = cameraAxes(view.camera.yaw, view.camera.pitch).forward;
  device.state.view = viewMatrix(view.camera.eyePosition, view.camera.yaw, view.camera.pitch);
  cutByDistance(view, forward);
  setLight(view, forward);
  const bool parallel = view.camera.orthoHeight > 0;  // then no sky is far enough
  const bool sky = view.settings.envMode && view.settings.renderMode == renderTextured && !parallel;
  if (sky && !view.settings.ground) drawSkyBox(view);
  if (!view.settings.envMode && !view.settings.ground) drawGridAndAxes(view);
  if (view.settings.uvChecker)
    drawChecked(view, forward);
  else
    drawModel(*view.scene.model, view.settings, device);
  drawCloserLook(view);
}

template <class... Values>
OverlayLine overlayLine(int32_t y, D3DCOLOR color, const char* format, Values... values) {
  char text[256];
  std::snprintf(text, sizeof text, format, values...);
  return {8, y, color, text};
}

/// The texts of a frame that took this many ticks.
std::vector<OverlayLine> overlayLines(const ModelView& view, int64_t ticks) {
  constexpr D3DCOLOR cyan = 0xFF00FFFF, white = 0xFFFFFFFF;
  const int64_t whole = view.counter.frequency / std::max<int64_t>(ticks, 1);
  const auto perSecond = static_cast<float>(whole);
  std::vector<OverlayLine> lines;
  lines.push_back(overlayLine(8, cyan, "%09.2f FPS, %09.2f ms", perSecond, 1000 / perSecond));
  if (view.settings.envMode || !view.scene.model) return lines;
  const Model& model = *view.scene.model;
  const Vector3& eye = view.camera.eyePosition;
  lines.push_back(overlayLine(24, white, "materials %u, meshes %u ( verts %u, indices %u, tris %u )",
                              model.materialCount, model.meshCount, model.totalVertices, model.totalIndices,
                              model.totalIndices / 3));
  lines.push_back(overlayLine(44, white, "POS: %09.2f %09.2f %09.2f", eye.x, eye.y, eye.z));
  lines.push_back(overlayLine(54, white, "ROT: %09.2f %09.2f %09.2f", view.camera.pitch, view.camera.yaw,
                              view.camera.roll));
  lines.push_back(overlayLine(64, white, "ENVTIME: %02.0f:00", view.settings.envTime));
  return lines;
}

/// The measured distance, beside the middle of its line.
void addDistance(const ModelView& view, std::vector<OverlayLine>& lines) {
  constexpr D3DCOLOR yellow = 0xFFFFFF00;
  const auto distance = measuredDistance(view.scene);
  if (!distance) return;
  const Vector3 &a = view.scene.measured[0], &b = view.scene.measured[1];
  const auto place = project(view, {(a.x + b.x) / 2, (a.y + b.y) / 2, (a.z + b.z) / 2});
  if (!place) return;
  lines.push_back(overlayLine(place->y, yellow, "%.6g", *distance));
  lines.back().x = place->x + 6;
}

void drawFrame(ModelView& view) {
  IDirect3DDevice9& device = *view.system.p_device;
  if (view.scene.model && !view.scene.buffersBuilt) buildMeshBuffers(view);
  const int64_t start = view.counter.now();
  device.Clear(view.settings.ground.value_or(packColor(view.settings.clearColor)));
  if (view.scene.model) drawScene(view);
  device.Present();
  view.overlay = overlayLines(view, view.counter.now() - start);
  addDistance(view, view.overlay);
}

}  // namespace

void renderFrame(ModelView& view) {
  if (!view.frameIdle || !view.system.p_device) return;
  const Restored idle(view.frameIdle);
  view.frameIdle = false;
  IDirect3DDevice9& device = *view.system.p_device;
  const HRESULT level = device.TestCooperativeLevel();
  if (level == D3DERR_DEVICELOST) return;
  if (level == D3DERR_DEVICENOTRESET) device.Reset(view.system.presentParams);
  try {
    drawFrame(view);
  } catch (const std::bad_alloc&) {
    device.Clear(packColor(view.settings.clearColor));  // rather no picture than that of an earlier frame
  }
}

}  // namespace facet

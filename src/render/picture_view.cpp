#include "render/picture_view.h"

#include <algorithm>

#include "device/direct3d.h"
#include "device/gl/egl_context.h"
#include "render/camera.h"
#include "render/filtering.h"
#include "render/frame.h"
#include "render/render_system.h"

namespace facet {

namespace {

LightMode usualLight(uint8_t renderMode, bool environment) {
  if (renderMode == renderLit) return lightHead;
  return renderMode == renderTextured && environment ? lightSun : lightOff;
}

}  // namespace

PictureView::PictureView(const PictureSettings& settings) : settings_(settings) {
  // The picture is the whole screen of the monitor it is made for; of a square one for square pixels.
  view_.window.handle = this;
  view_.window.screenWidth = settings.aspectIndex ? settings.width : 1;
  view_.window.screenHeight = settings.aspectIndex ? settings.height : 1;
  view_.aspectIndex = settings.aspectIndex.value_or(-1);

  DevicePlatform devices;
  devices.displayMode = {settings.width, settings.height, 0, D3DFMT_X8R8G8B8};
  if (settings.hardware) devices.createContext = createEglContext;
  RenderPlatform platform;
  platform.direct3DCreate9 = [&](uint32_t version) { return Direct3DCreate9(version, devices); };
  if (OnCreate(view_, platform) == 0) setUp();
}

void PictureView::setUp() {
  view_.envMode = settings_.environment;
  view_.envTime = settings_.time;
  view_.backgroundIndex = settings_.background;
  view_.clearColor = backgroundColor(settings_.background);
  view_.clearColor[3] = 1.0f;
  view_.noDistanceCut = settings_.noDistanceCut || !settings_.eye;
  view_.fovDegrees = settings_.fov.value_or(view_.fovDegrees);
  OnSize(view_, static_cast<int32_t>(settings_.width), static_cast<int32_t>(settings_.height));
  applyFiltering(view_, settings_.filter);
}

void PictureView::show(std::unique_ptr<Model> model) {
  const bool hasTextures = std::ranges::any_of(
      ownMaterials(*model), [](const Material& material) { return material.hasTexture != 0; });
  view_.model = std::move(model);
  view_.buffersBuilt = false;
  view_.renderMode = settings_.renderMode.value_or(hasTextures ? renderTextured : renderLit);
  view_.lightMode = settings_.lightMode.value_or(usualLight(view_.renderMode, settings_.environment));
  setTextureStage(view_, view_.renderMode == renderTextured && view_.lightMode != lightOff);
  if (!settings_.eye) bounds_ = boundingSphere(*view_.model);
}

void PictureView::aim(float turn) {
  if (settings_.eye) {
    view_.eyePosition = *settings_.eye;
    view_.pitch = settings_.pitch.value_or(0);
    view_.yaw = settings_.yaw.value_or(0);
    return;
  }
  constexpr float fromAbove = 20, fromTheSide = 30;
  view_.pitch = settings_.pitch.value_or(fromAbove);
  view_.yaw = settings_.yaw.value_or(fromTheSide) + turn;
  frameSphere(view_, bounds_);
}

Picture PictureView::draw(float turn) {
  aim(turn);
  renderFrame(view_);
  Picture picture{settings_.width, settings_.height, readBackBuffer(*view_.p_device)};
  if (settings_.overlay && !picture.pixels.empty())
    for (const OverlayLine& line : view_.overlay) drawText(picture, line.x, line.y, line.color, line.text);
  return picture;
}

}  // namespace facet

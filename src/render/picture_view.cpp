#include "render/picture_view.h"

#include <stb_easy_font.h>

#include <algorithm>

#include "device/direct3d.h"
#include "device/gl/gl_device.h"
#include "render/camera.h"
#include "render/navigation.h"
#include "render/render_system.h"
#include "render/scene.h"
#include "render/view.h"

namespace facet {

namespace {

/// Fills the pixels from left, top up to but not including right, bottom, as far as the picture has them.
void fill(Picture& picture, int64_t left, int64_t top, int64_t right, int64_t bottom, D3DCOLOR color) {
  right = std::min<int64_t>(right, picture.width);
  bottom = std::min<int64_t>(bottom, picture.height);
  for (int64_t y = std::max<int64_t>(top, 0); y < bottom; ++y)
    for (int64_t x = std::max<int64_t>(left, 0); x < right; ++x)
      for (int64_t i = 0; i < 3; ++i)
        picture.pixels[static_cast<size_t>((y * picture.width + x) * 4 + i)] =
            static_cast<uint8_t>(color >> (16 - 8 * i));
}

}  // namespace

void drawText(Picture& picture, int32_t x, int32_t y, D3DCOLOR color, std::string_view text) {
  struct Corner {
    float x, y, z;
    uint32_t color;
  };
  constexpr size_t cornersOfCharacter = 128;  // at most
  constexpr D3DCOLOR dark = 0xFF303030;
  std::string line(text);
  std::vector<Corner> corners(cornersOfCharacter * (line.size() + 1));
  const int quads = stb_easy_font_print(static_cast<float>(x), static_cast<float>(y), line.data(), nullptr,
                                        corners.data(), static_cast<int>(corners.size() * sizeof(Corner)));
  for (const int rim : {1, 0})
    for (int quad = 0; quad < quads; ++quad) {
      const Corner &first = corners[4 * static_cast<size_t>(quad)], &opposite = (&first)[2];
      fill(picture, static_cast<int64_t>(first.x) - rim, static_cast<int64_t>(first.y) - rim,
           static_cast<int64_t>(opposite.x) + rim, static_cast<int64_t>(opposite.y) + rim,
           rim != 0 ? dark : color);
    }
}

PictureView::PictureView(const PictureSettings& settings) : settings_(settings) {
  // The picture is the whole screen of the monitor it is made for; of a square one for square pixels.
  view_.window.handle = this;
  view_.window.screenWidth = settings.aspectIndex ? settings.width : 1;
  view_.window.screenHeight = settings.aspectIndex ? settings.height : 1;
  view_.settings.aspectIndex = settings.aspectIndex.value_or(-1);
  view_.window.pixelAspect = settings.pixelAspect;

  DevicePlatform devices;
  devices.displayMode = {settings.width, settings.height, 0, D3DFMT_X8R8G8B8};
  if (settings.hardware) devices.createContext = createEglContext;
  RenderPlatform platform;
  platform.direct3DCreate9 = [&](uint32_t version) { return Direct3DCreate9(version, devices); };
  if (OnCreate(view_, platform) != 0) return;
  view_.settings.envMode = settings_.environment;
  view_.settings.envTime = settings_.time;
  view_.settings.backgroundIndex = settings_.background;
  view_.settings.clearColor = backgroundColor(settings_.background);
  view_.settings.clearColor[3] = 1.0f;
  view_.settings.noDistanceCut = settings_.noDistanceCut || !settings_.eye;
  view_.settings.showUntextured = settings_.showUntextured;
  view_.camera.fovDegrees = settings_.fov.value_or(view_.camera.fovDegrees);
  OnSize(view_, static_cast<int32_t>(settings_.width), static_cast<int32_t>(settings_.height));
  applyFiltering(view_, settings_.filter);
}

namespace {

/// True where a light brings the first of the meshes in.
bool lacksLight(const Model& model, ViewSettings settings) {
  const auto isShown = [&](const Mesh& mesh) {
    return isShownTextured(model.materials[mesh.materialIndex], settings);
  };
  if (settings.renderMode != renderTextured || std::ranges::any_of(model.meshes, isShown)) return false;
  settings.lightMode = lightHead;
  return std::ranges::any_of(model.meshes, isShown);
}

}  // namespace

bool PictureView::show(std::unique_ptr<Model> model) {
  const bool hasTextures = std::ranges::any_of(
      ownMaterials(*model), [](const Material& material) { return material.hasTexture != 0; });
  setModel(view_.scene, std::move(model));
  view_.settings.renderMode = settings_.renderMode.value_or(hasTextures ? renderTextured : renderLit);
  const LightMode usual = view_.settings.renderMode == renderLit                                 ? lightHead
                          : view_.settings.renderMode == renderTextured && settings_.environment ? lightSun
                                                                                                 : lightOff;
  view_.settings.lightMode = settings_.lightMode.value_or(usual);
  const bool lacking = !settings_.lightMode && lacksLight(*view_.scene.model, view_.settings);
  if (lacking) view_.settings.lightMode = lightHead;
  setTextureStage(view_, view_.settings.renderMode == renderTextured && view_.settings.lightMode != lightOff);
  if (!settings_.eye) bounds_ = boundingSphere(*view_.scene.model);
  return lacking;
}

void PictureView::aim(float turn) {
  Camera& camera = view_.camera;
  camera.roll = settings_.roll;
  if (settings_.eye) {
    camera.eyePosition = *settings_.eye;
    camera.pitch = settings_.pitch.value_or(0);
    camera.yaw = settings_.yaw.value_or(0);
    camera.orthoHeight = settings_.orthoHeight;
    camera.nearZ = settings_.planes[0];
    camera.farZ = settings_.planes[1];
    setProjection(view_);
    return;
  }
  constexpr float fromAbove = 20, fromTheSide = 30;
  camera.pitch = settings_.pitch.value_or(fromAbove);
  camera.yaw = settings_.yaw.value_or(fromTheSide) + turn;
  camera.orthoHeight = settings_.orthographic ? 1.0f : 0.0f;  // framing gives it its size
  frameSphere(view_, bounds_);
}

namespace {

std::vector<uint8_t> drawBefore(ModelView& view, D3DCOLOR ground) {
  const Restored before(view.settings.ground);
  view.settings.ground = ground;
  renderFrame(view);
  return readBackBuffer(*view.system.p_device);
}

/// The model alone, drawn before black and before white: what differs shines through.
std::vector<uint8_t> drawTransparent(ModelView& view) {
  std::vector<uint8_t> pixels = drawBefore(view, 0xFF000000);
  const std::vector<uint8_t> onWhite = drawBefore(view, 0xFFFFFFFF);
  if (onWhite.size() != pixels.size()) return {};
  for (size_t i = 0; i < pixels.size(); i += 4) {
    int through = 0;
    for (size_t channel = i; channel < i + 3; ++channel) through += onWhite[channel] - pixels[channel];
    const int alpha = std::clamp(255 - through / 3, 0, 255);
    for (size_t channel = i; channel < i + 3 && alpha > 0; ++channel)
      pixels[channel] = static_cast<uint8_t>(std::min(255, pixels[channel] * 255 / alpha));
    pixels[i + 3] = static_cast<uint8_t>(alpha);
  }
  return pixels;
}

}  // namespace

Picture PictureView::draw(float turn) {
  aim(turn);
  return draw();
}

Picture PictureView::draw() {
  if (!settings_.transparent) renderFrame(view_);
  Picture picture{settings_.width, settings_.height,
                  settings_.transparent ? drawTransparent(view_) : readBackBuffer(*view_.system.p_device)};
  if (settings_.overlay && !picture.pixels.empty())
    for (const OverlayLine& line : view_.overlay) drawText(picture, line.x, line.y, line.color, line.text);
  return picture;
}

}  // namespace facet

#include "render/picture_view.h"

#include <stb_easy_font.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "device/direct3d.h"
#include "device/gl/gl_device.h"
#include "render/camera.h"
#include "render/render_system.h"
#include "render/scene.h"
#include "render/view.h"

namespace facet {

namespace {

template <class Use>
void forEachPosition(const Model& model, Use use) {
  constexpr float limit = 1e15f;
  const auto counts = [&](float value) { return std::fabs(value) <= limit; };
  for (const Mesh& mesh : model.meshes)
    for (uint32_t i = 0; i < mesh.vertexCount; ++i)
      if (const Vertex& v = mesh.vertices[i]; counts(v.x) && counts(v.y) && counts(v.z)) use(v);
}

}  // namespace

Sphere boundingSphere(const Model& model) {
  constexpr float far = std::numeric_limits<float>::max();
  Vector3 low{far, far, far}, high{-far, -far, -far};
  forEachPosition(model, [&](const Vertex& v) {
    low = {std::min(low.x, v.x), std::min(low.y, v.y), std::min(low.z, v.z)};
    high = {std::max(high.x, v.x), std::max(high.y, v.y), std::max(high.z, v.z)};
  });
  if (low.x > high.x) return {};
  Sphere sphere;
  sphere.center = {(low.x + high.x) / 2, (low.y + high.y) / 2, (low.z + high.z) / 2};
  float square = 0;
  forEachPosition(model, [&](const Vertex& v) {
    const float x = v.x - sphere.center.x, y = v.y - sphere.center.y, z = v.z - sphere.center.z;
    square = std::max(square, x * x + y * y + z * z);
  });
  if (square > 0) sphere.radius = std::sqrt(square);
  return sphere;
}

void frameSphere(ModelView& view, const Sphere& sphere) {
  constexpr float margin = 1.05f;
  const float vertical = std::tan(view.camera.fovDegrees * radiansPerDegree / 2);
  const float narrowest = std::atan(vertical * std::min(viewAspect(view), 1.0f));
  const float distance = margin * sphere.radius / std::sin(narrowest);
  const Vector3 forward = cameraAxes(view.camera.yaw, view.camera.pitch).forward;
  view.camera.eyePosition = {sphere.center.x - distance * forward.x, sphere.center.y - distance * forward.y,
                             sphere.center.z - distance * forward.z};

  // As deep as the window's view where that is enough; beyond, planes and sky grow with the model.
  const float skyScale = std::max(1.0f, margin * (distance + sphere.radius) / 200.0f);
  buildSkyBox(view, {0, 0, 0}, 400 * skyScale, 200 * skyScale, 400 * skyScale);
  const float nearest = std::min((distance - sphere.radius) / 2, std::max(nearPlane, distance / 500));
  setProjection(view, nearest, farPlane * skyScale);
}

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
  view_.scene.model = std::move(model);
  view_.scene.buffersBuilt = false;
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
  if (settings_.eye) {
    view_.camera.eyePosition = *settings_.eye;
    view_.camera.pitch = settings_.pitch.value_or(0);
    view_.camera.yaw = settings_.yaw.value_or(0);
    return;
  }
  constexpr float fromAbove = 20, fromTheSide = 30;
  view_.camera.pitch = settings_.pitch.value_or(fromAbove);
  view_.camera.yaw = settings_.yaw.value_or(fromTheSide) + turn;
  frameSphere(view_, bounds_);
}

Picture PictureView::draw(float turn) {
  aim(turn);
  renderFrame(view_);
  Picture picture{settings_.width, settings_.height, readBackBuffer(*view_.system.p_device)};
  if (settings_.overlay && !picture.pixels.empty())
    for (const OverlayLine& line : view_.overlay) drawText(picture, line.x, line.y, line.color, line.text);
  return picture;
}

}  // namespace facet

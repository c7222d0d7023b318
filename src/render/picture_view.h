#pragma once

#include <optional>
#include <string>
#include <vector>

#include "render/view.h"

namespace facet {

/// R, G, B, A bytes, top row first.
struct Picture {
  uint32_t width = 0, height = 0;
  std::vector<uint8_t> pixels;
};

/// Writes a line of text with its top left corner at a place, in ASCII letters some 7 pixels high, on a
/// dark rim. What does not fit is cut off.
void drawText(Picture& picture, int32_t x, int32_t y, D3DCOLOR color, std::string_view text);

struct Sphere {
  Vector3 center{};
  float radius = 1;
};

/// A sphere around all vertices of the model: their box's centre, the farthest vertex. Positions that are no
/// numbers, or beyond 1e15, do not count. A model of one point or none has radius 1.
Sphere boundingSphere(const Model& model);

/// Moves the eye back along its view direction until the sphere fills the picture, and chooses clip planes
/// and a sky that hold it. The view has its angles, field of view and client size.
void frameSphere(ModelView& view, const Sphere& sphere);

/// What a picture is to show, the same for every model.
struct PictureSettings {
  uint32_t width = 1280, height = 720;
  std::optional<uint8_t> renderMode;  ///< none: textured where the model has textures, else lit
  std::optional<uint8_t>
      lightMode;  ///< none: head where colours are lit, sun over textures in the environment
  bool environment = false;
  float time = 12;
  uint8_t filter = 5;
  uint8_t background = 2;
  std::optional<Vector3> eye;  ///< none: the whole model is framed
  std::optional<float> pitch, yaw;
  std::optional<float> fov;
  std::optional<int8_t> aspectIndex;  ///< of the monitor that the picture fills; none: square pixels
  bool noDistanceCut = false;
  bool showUntextured = true;  ///< in their colours, where textures are drawn
  bool overlay = false;
  bool hardware = false;
};

/// A view without a window: pictures of models, one after the other. Stays on the thread that made it.
class PictureView {
 public:
  explicit PictureView(const PictureSettings& settings);
  PictureView(const PictureView&) = delete;
  PictureView& operator=(const PictureView&) = delete;

  /// The device that models are loaded for, none when the set-up failed.
  IDirect3DDevice9* device() { return view_.system.p_device.get(); }

  /// Takes the model to be shown. True when the head light is on though the settings do not ask for it: all
  /// of the model is left out without one.
  bool show(std::unique_ptr<Model> model);

  /// Draws the model, turned by `turn` degrees around where it would be seen from. Empty when the device
  /// gives no picture.
  Picture draw(float turn);

 private:
  void aim(float turn);

  PictureSettings settings_;
  Sphere bounds_;
  ModelView view_;
};

}  // namespace facet

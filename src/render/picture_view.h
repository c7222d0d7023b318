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
  float roll = 0;  ///< the overlay tells it; pictures are not turned by it
  std::optional<float> fov;
  std::optional<int8_t> aspectIndex;  ///< of the monitor that the picture fills; none: see pixelAspect
  float pixelAspect = 1;              ///< width by height of a pixel, where there is no monitor
  bool orthographic = false;          ///< in parallel projection, where the whole model is framed
  float orthoHeight = 0;              ///< with eye: world units from top to bottom; 0: in perspective
  std::array<float, 2> planes = {nearPlane, farPlane};  ///< with eye: the clip planes
  bool noDistanceCut = false;
  bool showUntextured = true;  ///< in their colours, where textures are drawn
  bool overlay = false;
  bool transparent = false;  ///< no background, no grid, no axes, no sky; alpha tells what covers a pixel
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

  /// Draws the view as it is.
  Picture draw();

  /// Where whoever knows better than the settings says what is shown, and from where.
  ModelView& view() { return view_; }

 private:
  void aim(float turn);

  PictureSettings settings_;
  Sphere bounds_;
  ModelView view_;
};

}  // namespace facet

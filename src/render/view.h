#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "device/device.h"
#include "import/load.h"
#include "model/model.h"

// The view: what it shows the model with, and the device it draws on. Whoever hosts it (a window, the command
// line, a test) owns the ModelView, fills `window`, and calls the operations of this room on it.

namespace facet {

/// r, g, b, a packed as 0xAARRGGBB. A channel is 255 from 1.0 on, 0 up to 0.0 (and for NaN), else
/// c * 255 + 0.5 truncated.
D3DCOLOR packColor(const std::array<float, 4>& color);

/// The backgrounds that can be chosen: red, green, blue.
inline constexpr std::array<std::array<float, 3>, 22> backgroundTable = {{
    {0.0f, 0.0f, 0.0f},    {0.25f, 0.25f, 0.25f}, {0.5f, 0.5f, 0.5f},    {0.75f, 0.75f, 0.75f},
    {0.5f, 0.5f, 1.0f},    {0.75f, 0.75f, 1.0f},  {1.0f, 0.5f, 0.5f},    {1.0f, 0.75f, 0.75f},
    {0.01f, 0.06f, 0.31f}, {0.03f, 0.13f, 0.27f}, {0.05f, 0.28f, 0.33f}, {0.13f, 0.24f, 0.35f},
    {0.13f, 0.34f, 0.37f}, {0.05f, 0.44f, 0.67f}, {0.21f, 0.43f, 0.59f}, {0.23f, 0.42f, 0.61f},
    {0.33f, 0.47f, 0.68f}, {0.39f, 0.49f, 0.65f}, {0.57f, 0.57f, 0.58f}, {0.31f, 0.67f, 1.0f},
    {0.6f, 0.65f, 0.73f},  {0.6f, 0.9f, 1.0f},
}};

/// The clear colour of a background: its channels cut to whole 255ths, alpha 0. `index` is below 22.
std::array<float, 4> backgroundColor(uint8_t index);

/// Background 2, before any was chosen: its alpha is 1.
inline constexpr std::array<float, 4> startClearColor = {127 * 0.003921569f, 127 * 0.003921569f,
                                                         127 * 0.003921569f, 1.0f};

enum RenderMode : uint8_t { renderWireframe = 0, renderLit = 1, renderTextured = 2 };
enum LightMode : uint8_t { lightOff = 0, lightHead = 1, lightSun = 2 };
inline constexpr std::array renderModeNames = {"wireframe", "lit", "textured"};
inline constexpr std::array lightModeNames = {"off", "head", "sun"};

/// One way to sample textures.
struct FilterMode {
  D3DTEXTUREFILTERTYPE filter, mip;
  const char* statusText;
};
inline constexpr std::array<FilterMode, 8> filterModes = {{
    {D3DTEXF_POINT, D3DTEXF_NONE, "> Filtering: POINT/POINT"},
    {D3DTEXF_LINEAR, D3DTEXF_NONE, "> Filtering: LINEAR/LINEAR"},
    {D3DTEXF_POINT, D3DTEXF_POINT, "> Filtering: POINT/POINT/POINT"},
    {D3DTEXF_POINT, D3DTEXF_LINEAR, "> Filtering: POINT/POINT/LINEAR"},
    {D3DTEXF_LINEAR, D3DTEXF_POINT, "> Filtering: LINEAR/LINEAR/POINT"},
    {D3DTEXF_LINEAR, D3DTEXF_LINEAR, "> Filtering: LINEAR/LINEAR/LINEAR"},
    {D3DTEXF_ANISOTROPIC, D3DTEXF_POINT, "> Filtering: ANISOTROPIC/ANISOTROPIC/POINT"},
    {D3DTEXF_ANISOTROPIC, D3DTEXF_LINEAR, "> Filtering: ANISOTROPIC/ANISOTROPIC/LINEAR"},
}};

inline constexpr char applicationTitle[] = "r_dx9::Facet Bench [x64] 1.0.5@.201312xx";

struct Point {
  int32_t x = 0, y = 0;
};

/// The window that the view is drawn in and the screen it stands on.
struct ViewWindow {
  void* handle = nullptr;  ///< what the device draws for; none: there is no window, and set-up fails
  uint32_t screenWidth = 1920, screenHeight = 1080;
  uint32_t bitsPerPixel = 32;
  float pixelAspect = 1;  ///< besides what the monitor's shape says: width by height of a pixel
};

/// A counter of ticks, and how many of them make a second.
struct PerformanceCounter {
  int64_t frequency;
  std::function<int64_t()> now;
};

/// Nanoseconds of the machine's steady clock.
PerformanceCounter steadyCounter();

/// A text to be written over the presented picture; the position is its top left corner in the window.
struct OverlayLine {
  int32_t x, y;
  D3DCOLOR color;
  std::string text;
};

/// The device and what was created on it at set-up.
struct RenderSystem {
  std::shared_ptr<IDirect3D9> p_d3d;
  std::shared_ptr<IDirect3DDevice9> p_device;
  D3DPRESENT_PARAMETERS presentParams;
  D3DDISPLAYMODE displayMode;                                                 ///< of the desktop at set-up
  std::shared_ptr<IDirect3DVertexBuffer9> axesBuffer, gridBuffer, skyBuffer;  ///< none: creation failed
  std::shared_ptr<IDirect3DTexture9> checker;                                 ///< made when it is first shown
};

/// How the scene is drawn.
struct ViewSettings {
  uint8_t renderMode = renderWireframe;
  bool envMode = false;  ///< environment: sky instead of grid, axes and texts; light by the time of day
  uint8_t lightMode = lightOff;
  uint8_t filterMode = 0;       ///< into filterModes
  bool noDistanceCut = false;   ///< draw every mesh, however far from the view
  bool showUntextured = false;  ///< draw meshes without a texture in their colours where textures are drawn
  uint8_t backgroundIndex = 2;  ///< into backgroundTable; 0 also makes wireframes yellow
  float gamma = 1.0f;           ///< of the display
  float envTime = 0;            ///< hours
  std::array<float, 4> clearColor = startClearColor;
  int8_t aspectIndex = 1;                           ///< into monitorAspects; any other value: no factor
  bool flatShading = false, smoothShading = false;  ///< which quality was asked for last, if any
  bool wires = false;                               ///< of the triangles, over what is shaded
  bool boxes = false;                               ///< around each mesh
  bool normals = false;                             ///< of each vertex, as a line
  bool uvChecker = false;          ///< a checker board in place of all textures, under the head light
  bool gizmo = false;              ///< the directions of the axes, in a corner of the window
  bool measuring = false;          ///< clicks set the ends of a distance
  std::optional<D3DCOLOR> ground;  ///< the model alone is drawn, before this colour
};

/// The clip planes that a camera starts with, world units in front of the eye.
inline constexpr float nearPlane = 1.0f, farPlane = 350.0f;

/// Where the scene is seen from, and the moves that the next frame makes.
struct Camera {
  float pitch = 0;           ///< degrees; positive looks down
  float yaw = 0;             ///< degrees; 0 looks along +z
  float roll = 0;            ///< degrees; shown, not used
  float moveSide = 0;        ///< pending move, positive to the left; the next frame consumes it
  float moveUp = 0;          ///< pending move, positive down
  float moveForward = 0;     ///< pending move, positive backwards
  float moveSpeed = 0.1f;    ///< world units of one movement step
  float fovDegrees = 67.5f;  ///< vertical
  Vector3 eyePosition{0, 3, -10};
  float nearZ = nearPlane, farZ = farPlane;  ///< clip planes; the sky grows with the far one
  float orthoHeight = 0;  ///< world units from top to bottom of a parallel projection; 0: in perspective
  Vector3 pivot{};        ///< what orbiting turns about
};

/// The buttons that are held, and where each drag has come to.
struct Mouse {
  struct Button {
    bool down = false;
    Point dragPos;
  };
  Button left, right, middle;
};

struct Sphere {
  Vector3 center{};
  float radius = 1;
};

/// Lines to be drawn over the model; made when they are needed and not there.
struct LineBuffer {
  std::shared_ptr<IDirect3DVertexBuffer9> vertices;  ///< none: not made, or creation failed
  uint32_t lines = 0;
  bool built = false;
};

/// An edge of a mesh as one of its triangles has it.
struct TriangleEdge {
  uint64_t places;    ///< the numbers of its ends, the lower one in front; equal places have one number
  uint32_t triangle;  ///< where its indices begin
};

/// What is shown.
struct Scene {
  BasePaths texturePath;
  std::string modelPath;      ///< of the current model file
  int32_t fileIndex = 0;      ///< of the file among its folder's models
  bool buffersBuilt = false;  ///< the meshes' vertex buffers match renderMode
  std::unique_ptr<Model> model;
  uint64_t generation = 0;                       ///< counts the models that were shown
  std::vector<uint32_t> selected;                ///< meshes, in rising order
  std::vector<Vector3> measured;                 ///< the ends of a distance, at most two
  std::vector<std::vector<TriangleEdge>> edges;  ///< of each mesh of edgesOf, sorted by places
  std::vector<uint32_t> edgesOf;                 ///< the selection that the edges were found for
  LineBuffer boxLines, normalLines;
  std::optional<Sphere> bounds;  ///< of the meshes that are not hidden; none: not known yet
};

struct ModelView {
  ViewWindow window;
  PerformanceCounter counter = steadyCounter();
  int32_t clientWidth = 0, clientHeight = 0;
  RenderSystem system;
  ViewSettings settings;
  Camera camera;
  Mouse mouse;
  bool frameIdle = true;             ///< no frame is being drawn
  std::vector<OverlayLine> overlay;  ///< the texts over the last presented picture
  Scene scene;                       ///< last: its buffers go before the device they were made on
};

/// Draws one frame: moves the camera by the pending moves, decides which meshes are near enough, draws
/// scenery and model, presents, and leaves the texts that belong over the picture in `overlay`. While a frame
/// is being drawn, or before there is a device, does nothing. A lost device draws nothing; one that is ready
/// again is reset first. When memory runs out the device is left without a picture, and the next frame tries
/// again.
void renderFrame(ModelView& view);

/// Sets the texture filters of a mode; a mode of 8 or more changes nothing.
void applyFiltering(ModelView& view, uint32_t mode);

/// Smooth shading and, while textures are drawn, the chosen filters; otherwise flat shading and point
/// filters. Asked twice in a row, acts once.
void setQuality(ModelView& view, bool high);

/// How textures meet the light: lit, the vertex colour times the texture; otherwise the texture alone.
void setTextureStage(ModelView& view, bool lit);

/// Puts a model, or none, in place of the one before; nothing of that one is selected or measured any more.
void setModel(Scene& scene, std::unique_ptr<Model> model);

/// Releases the model, resets the window's title and draws the empty scene; without a model, does nothing.
void closeModel(ModelView& view);

}  // namespace facet

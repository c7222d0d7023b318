#include "render/scenery.h"

#include <span>

#include "render/camera.h"
#include "render/draw_model.h"

namespace facet {

namespace {

struct LineVertex {
  float x, y, z;
  D3DCOLOR color;
};
struct SkyVertex {
  float x, y, z, u, v;
};
constexpr uint32_t lineFvf = D3DFVF_XYZ | D3DFVF_DIFFUSE;
constexpr uint32_t skyFvf = D3DFVF_XYZ | D3DFVF_TEX1;
constexpr uint32_t axisLines = 3, gridLines = 82, skyQuads = 10;

constexpr LineVertex axes[] = {
    {-1, 0, 0, 0x00FF0000}, {5, 0, 0, 0x00FF0000},  {0, -1, 0, 0x0000FF00},
    {0, 5, 0, 0x0000FF00},  {0, 0, -1, 0x000000FF}, {0, 0, 5, 0x000000FF},
};

/// A corner of the box (-1: low side, 0: middle of a wall, 1: high side) and its place in the picture.
struct SkyCorner {
  int8_t x, y, z;
  float u, v;
};
constexpr SkyCorner skyCorners[] = {
    {1, 1, 1, 0, 0},       {1, 1, -1, 1, 0},          {1, 0, 1, 0, 1},           {1, 0, -1, 1, 1},
    {-1, 0, 1, 1, 1},      {-1, 0, -1, 0, 1},         {-1, 1, 1, 1, 0},          {-1, 1, -1, 0, 0},
    {-1, 1, -1, 0, 0},     {1, 1, -1, 1, 0},          {-1, 1, 1, 0, 1},          {1, 1, 1, 1, 1},
    {1, -1, 1, 1, 0.01f},  {1, -1, -1, 0.99f, 0.99f}, {-1, -1, 1, 0.01f, 0.01f}, {-1, -1, -1, 0.01f, 0.99f},
    {-1, 1, 1, 0, 0},      {1, 1, 1, 1, 0},           {-1, 0, 1, 0, 1},          {1, 0, 1, 1, 1},
    {1, 1, -1, 0, 0},      {-1, 1, -1, 1, 0},         {1, 0, -1, 0, 1},          {-1, 0, -1, 1, 1},
    {-1, 0, 1, 0, 0},      {1, 0, 1, 1, 0},           {-1, -1, 1, 0, 0.01f},     {1, -1, 1, 1, 0.01f},
    {1, 0, -1, 1, 1},      {-1, 0, -1, 0, 1},         {1, -1, -1, 1, 0.99f},     {-1, -1, -1, 0, 0.99f},
    {1, 0, 1, 1, 0},       {1, 0, -1, 1, 1},          {1, -1, 1, 0.99f, 0},      {1, -1, -1, 0.99f, 1},
    {-1, -1, 1, 0.01f, 0}, {-1, -1, -1, 0.01f, 1},    {-1, 0, 1, 0, 0},          {-1, 0, -1, 0, 1},
};
static_assert(std::size(skyCorners) == skyQuads * 4);

/// Which sky picture a quad shows: walls and top their own, the bottom and all lower halves the bottom's.
constexpr uint32_t skyPicture(uint32_t quad) {
  return quad < skyMaterialCount ? quad : 3;
}

template <class V>
std::shared_ptr<IDirect3DVertexBuffer9> createBuffer(IDirect3DDevice9& device, std::span<const V> vertices,
                                                     uint32_t fvf) {
  const auto bytes = std::as_bytes(vertices);
  return device.CreateVertexBuffer(fvf, {bytes.begin(), bytes.end()});
}

}  // namespace

void buildAxes(ModelView& view) {
  view.axesBuffer = createBuffer<LineVertex>(*view.p_device, axes, lineFvf);
}

void buildGrid(ModelView& view) {
  constexpr float y = -0.01f, reach = 20.0f;
  constexpr D3DCOLOR white = 0x00FFFFFF;
  std::vector<LineVertex> lines;
  for (float v = -reach; v < reach + 1; v += 1.0f)
    lines.insert(lines.end(),
                 {{v, y, -reach, white}, {v, y, reach, white}, {-reach, y, v, white}, {reach, y, v, white}});
  view.gridBuffer = createBuffer<LineVertex>(*view.p_device, lines, lineFvf);
}

void buildSkyBox(ModelView& view, const Vector3& center, float width, float height, float depth) {
  const float lowX = center.x - width / 2, lowZ = center.z - depth / 2;
  std::vector<SkyVertex> vertices;
  for (const SkyCorner& corner : skyCorners)
    vertices.push_back({corner.x < 0 ? lowX : lowX + width, center.y + static_cast<float>(corner.y) * height,
                        corner.z < 0 ? lowZ : lowZ + depth, corner.u, corner.v});
  view.skyBuffer = createBuffer<SkyVertex>(*view.p_device, vertices, skyFvf);
}

void drawSkyBox(ModelView& view) {
  const Model& model = *view.model;
  if (!view.skyBuffer || model.materials.size() < skyMaterialCount) return;
  const Material* sky = &model.materials[model.materials.size() - skyMaterialCount];
  IDirect3DDevice9& device = *view.p_device;
  const StateScope scope(device);
  device.state.world = skyMatrix(view.envTime, view.eyePosition);
  device.state.cullMode = D3DCULL_CCW;
  device.state.fillMode = D3DFILL_SOLID;
  device.state.address = D3DTADDRESS_CLAMP;
  for (uint32_t quad = 0; quad < skyQuads; ++quad) {
    device.state.texture = sky[skyPicture(quad)].texture;
    device.DrawPrimitive(D3DPT_TRIANGLESTRIP, view.skyBuffer, 4 * quad, 2);
  }
}

void drawGridAndAxes(ModelView& view) {
  IDirect3DDevice9& device = *view.p_device;
  const StateScope scope(device);
  device.state.cullMode = D3DCULL_NONE;
  device.state.fillMode = D3DFILL_WIREFRAME;
  if (view.axesBuffer) device.DrawPrimitive(D3DPT_LINELIST, view.axesBuffer, 0, axisLines);
  if (view.gridBuffer) device.DrawPrimitive(D3DPT_LINELIST, view.gridBuffer, 0, gridLines);
}

}  // namespace facet

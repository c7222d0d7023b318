#include "render/scene.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "render/camera.h"

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
static_assert(std::size(skyCorners) == size_t{skyQuads} * 4);

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
  view.system.axesBuffer = createBuffer<LineVertex>(*view.system.p_device, axes, lineFvf);
}

void buildGrid(ModelView& view) {
  constexpr float y = -0.01f, reach = 20;
  constexpr D3DCOLOR white = 0x00FFFFFF;
  std::vector<LineVertex> lines;
  for (int line = -20; line <= 20; ++line) {
    const auto v = static_cast<float>(line);
    lines.insert(lines.end(),
                 {{v, y, -reach, white}, {v, y, reach, white}, {-reach, y, v, white}, {reach, y, v, white}});
  }
  view.system.gridBuffer = createBuffer<LineVertex>(*view.system.p_device, lines, lineFvf);
}

void buildSkyBox(ModelView& view, const Vector3& center, float width, float height, float depth) {
  const float lowX = center.x - width / 2, lowZ = center.z - depth / 2;
  std::vector<SkyVertex> vertices;
  for (const SkyCorner& corner : skyCorners)
    vertices.push_back({corner.x < 0 ? lowX : lowX + width, center.y + static_cast<float>(corner.y) * height,
                        corner.z < 0 ? lowZ : lowZ + depth, corner.u, corner.v});
  view.system.skyBuffer = createBuffer<SkyVertex>(*view.system.p_device, vertices, skyFvf);
}

void drawSkyBox(ModelView& view) {
  const Model& model = *view.scene.model;
  if (!view.system.skyBuffer || model.materials.size() < skyMaterialCount) return;
  const Material* sky = &model.materials[model.materials.size() - skyMaterialCount];
  IDirect3DDevice9& device = *view.system.p_device;
  const Restored state(device.state);
  device.state.world = skyMatrix(view.settings.envTime, view.camera);
  device.state.cullMode = D3DCULL_CCW;
  device.state.fillMode = D3DFILL_SOLID;
  device.state.address = D3DTADDRESS_CLAMP;
  for (uint32_t quad = 0; quad < skyQuads; ++quad) {
    device.state.texture = sky[skyPicture(quad)].texture;
    device.DrawPrimitive(D3DPT_TRIANGLESTRIP, view.system.skyBuffer, 4 * quad, 2);
  }
}

void drawGridAndAxes(ModelView& view) {
  IDirect3DDevice9& device = *view.system.p_device;
  const Restored state(device.state);
  device.state.cullMode = D3DCULL_NONE;
  device.state.fillMode = D3DFILL_WIREFRAME;
  if (view.system.axesBuffer) device.DrawPrimitive(D3DPT_LINELIST, view.system.axesBuffer, 0, axisLines);
  if (view.system.gridBuffer) device.DrawPrimitive(D3DPT_LINELIST, view.system.gridBuffer, 0, gridLines);
}

namespace {

/// The colours of the textured modes by the hour: `level` is 0.7 at noon and falls to 0.1 at midnight.
struct Daylight {
  float level;
  D3DCOLORVALUE diffuse;
};

Daylight daylight(float envTime) {
  const float level = 0.7f - std::fabs(envTime - 12.0f) * 0.05f;
  const float bright = std::min(2.5f * level, 1.0f);
  if (envTime < 12.0f) return {level, {bright, level, 0.5f * level, 1.0f}};
  return {level, {bright, bright, level, 1.0f}};
}

}  // namespace

void setLight(ModelView& view, const Vector3& forward) {
  DeviceState& state = view.system.p_device->state;
  state.lightEnable = view.settings.lightMode != lightOff && view.settings.renderMode != renderWireframe;
  if (!state.lightEnable) return;
  D3DLIGHT9& light = state.light;
  if (view.settings.renderMode == renderLit) {
    light.Ambient = {0.3f, 0.3f, 0.3f, 1.0f};
    light.Diffuse = {1, 1, 1, 1};
    light.Specular = {0.3f, 0.3f, 0.3f, 1.0f};
  } else {
    const Daylight day = daylight(view.settings.envTime);
    const auto& clear = view.settings.clearColor;
    light.Ambient = view.settings.envMode ? D3DCOLORVALUE{day.level, day.level, day.level, 1.0f}
                                          : D3DCOLORVALUE{clear[0], clear[1], clear[2], clear[3]};
    light.Diffuse = day.diffuse;
  }
  if (view.settings.lightMode == lightHead) {
    light.Direction = {forward.x, forward.y, forward.z};
  } else {
    const float theta = view.settings.envTime * 3.1415925f / 12.0f;
    light.Direction = {std::sin(theta), std::cos(theta), std::cos(theta)};
  }
}

// The model.

namespace {

struct ColoredVertex {
  Vector3 position;
  D3DCOLOR color;
};
struct LitVertex {
  Vector3 position, normal;
  D3DCOLOR color;
};
struct TexturedVertex {
  Vector3 position, normal;
  float u, v;
};
static_assert(sizeof(ColoredVertex) == 16 && sizeof(LitVertex) == 28 && sizeof(TexturedVertex) == 32);

D3DMATERIAL9 materialOf(uint8_t renderMode) {
  constexpr D3DCOLORVALUE white{1, 1, 1, 1};
  D3DMATERIAL9 material;
  if (renderMode == renderLit) {
    material.Diffuse = {0.8f, 0.8f, 0.8f, 1.0f};
    material.Ambient = {0.2f, 0.2f, 0.2f, 1.0f};
    material.Specular = white;
  } else if (renderMode == renderTextured) {
    material.Diffuse = material.Ambient = material.Specular = white;
  }
  material.Power = 8.0f;
  return material;
}

Vector3 position(const Mesh& mesh, uint32_t i) {
  return {mesh.vertices[i].x, mesh.vertices[i].y, mesh.vertices[i].z};
}

/// A buffer of vertices make(0), make(1) ...; none when it would pass 4 GiB or the device refuses.
template <class Make>
std::shared_ptr<IDirect3DVertexBuffer9> bufferOf(IDirect3DDevice9& device, uint32_t fvf, uint32_t count,
                                                 Make make) {
  using V = decltype(make(0));
  const size_t size = size_t{count} * sizeof(V);
  if (size > UINT32_MAX) return nullptr;
  std::vector<std::byte> bytes(size);
  auto* out = reinterpret_cast<V*>(bytes.data());
  for (uint32_t i = 0; i < count; ++i) out[i] = make(i);
  return device.CreateVertexBuffer(fvf, std::move(bytes));
}

/// A mesh without a texture, shown as if colours were drawn instead of textures.
bool isInColors(const Material& material, const ViewSettings& settings) {
  return settings.showUntextured && material.hasTexture == 0;
}

std::shared_ptr<IDirect3DVertexBuffer9> meshBuffer(const ModelView& view, const Mesh& mesh) {
  IDirect3DDevice9& device = *view.system.p_device;
  const RenderMode asked{view.settings.renderMode}, mode = view.settings.uvChecker ? renderTextured : asked;
  if (mode == renderWireframe) {
    const D3DCOLOR color = view.settings.backgroundIndex == 0 ? 0x00FFFF00 : 0x00000000;
    return bufferOf(device, D3DFVF_XYZ | D3DFVF_DIFFUSE, mesh.vertexCount, [&](uint32_t i) {
      return ColoredVertex{position(mesh, i), color};
    });
  }
  const Material& material = view.scene.model->materials[mesh.materialIndex];
  if (mode == renderLit || (isInColors(material, view.settings) && !view.settings.uvChecker)) {
    const D3DCOLOR color = packColor(material.color);
    return bufferOf(device, D3DFVF_XYZ | D3DFVF_NORMAL | D3DFVF_DIFFUSE, mesh.vertexCount, [&](uint32_t i) {
      return LitVertex{position(mesh, i), mesh.normals[i], color};
    });
  }
  return bufferOf(device, D3DFVF_XYZ | D3DFVF_NORMAL | D3DFVF_TEX1, mesh.vertexCount, [&](uint32_t i) {
    return TexturedVertex{position(mesh, i), mesh.normals[i], mesh.vertices[i].u, mesh.vertices[i].v};
  });
}

}  // namespace

void buildMeshBuffers(ModelView& view) {
  view.system.p_device->state.material = materialOf(view.settings.renderMode);
  for (Mesh& mesh : view.scene.model->meshes) {
    mesh.vertexBuffer.reset();
    mesh.vertexBuffer = meshBuffer(view, mesh);
  }
  view.scene.buffersBuilt = true;
}

namespace {

constexpr uint8_t blendFlags = renderSelfLight;

/// How the pair of blend bits mixes a mesh with what lies behind it.
struct BlendRow {
  uint8_t flags;
  bool unlit;
  D3DBLEND source, destination;
};
constexpr BlendRow blendTable[] = {
    {renderBlend, false, D3DBLEND_SRCALPHA, D3DBLEND_INVSRCALPHA},
    {renderLightPlane, true, D3DBLEND_ONE, D3DBLEND_INVSRCALPHA},
    {renderSelfLight, true, D3DBLEND_ONE, D3DBLEND_SRCALPHA},
};

void drawMesh(const Mesh& mesh, IDirect3DDevice9& device) {
  device.DrawIndexedPrimitive(mesh.vertexBuffer, mesh.indexBuffer);
}

/// Changes a plain state into what a mesh of these render flags is drawn with.
void applyRenderFlags(uint8_t renderFlags, DeviceState& state) {
  state.alphaTestEnable = (renderFlags & renderAlphaTest) != 0;
  state.alphaRef = renderFlags == renderAlphaTest ? 128 : 0;
  for (const BlendRow& row : blendTable) {
    if ((renderFlags & blendFlags) != row.flags) continue;
    if (row.unlit) state.lighting = false;
    state.srcBlend = row.source;
    state.destBlend = row.destination;
    state.alphaBlendEnable = true;
  }
}

/// Plain meshes first, then those whose materials want more, from either side.
void drawTextured(const Model& model, const ViewSettings& settings, IDirect3DDevice9& device) {
  const D3DMATERIAL9 textured = device.state.material;
  const auto draw = [&](bool special, const auto& setState) {
    for (const Mesh& mesh : model.meshes) {
      const Material& material = model.materials[mesh.materialIndex];
      if (isSpecial(material) != special || !isDrawable(mesh) || !isShownTextured(material, settings))
        continue;
      setState(material);
      device.state.texture = material.texture;
      drawMesh(mesh, device);
    }
  };
  draw(false, [&](const Material& material) {
    device.state.material = isInColors(material, settings) ? materialOf(renderLit) : textured;
  });
  device.state.material = textured;
  device.state.cullMode = D3DCULL_NONE;
  const DeviceState plain = device.state;
  draw(true, [&](const Material& material) {
    device.state = plain;
    applyRenderFlags(material.renderFlags, device.state);
  });
}

}  // namespace

bool isSpecial(const Material& material) {
  return material.hasTexture != 0 && (material.renderFlags & (renderAlphaTest | renderSelfLight)) != 0;
}

bool isDrawable(const Mesh& mesh) {
  return mesh.vertexBuffer && mesh.indexBuffer && mesh.visibility != 0 && !mesh.hidden;
}

bool isShownTextured(const Material& material, const ViewSettings& settings) {
  if (material.hasTexture == 0) return settings.showUntextured;
  return !isSpecial(material) || settings.lightMode != lightOff ||
         (material.renderFlags & renderNeedsLight) == 0;
}

void drawModel(const Model& model, const ViewSettings& settings, IDirect3DDevice9& device) {
  if (settings.renderMode > renderTextured) return;
  const Restored state(device.state);
  const bool wires = settings.renderMode == renderWireframe;
  device.state.cullMode = wires ? D3DCULL_NONE : D3DCULL_CCW;
  device.state.fillMode = wires ? D3DFILL_WIREFRAME : D3DFILL_SOLID;
  device.state.lighting = !wires && settings.lightMode != lightOff;
  if (settings.renderMode == renderTextured) return drawTextured(model, settings, device);
  for (const Mesh& mesh : model.meshes)
    if (isDrawable(mesh)) drawMesh(mesh, device);
}

}  // namespace facet

#include "render/draw_model.h"

#include "render/view.h"

namespace facet {

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

std::shared_ptr<IDirect3DVertexBuffer9> meshBuffer(const ModelView& view, const Mesh& mesh) {
  IDirect3DDevice9& device = *view.system.p_device;
  if (view.settings.renderMode == renderWireframe) {
    const D3DCOLOR color = view.settings.backgroundIndex == 0 ? 0x00FFFF00 : 0x00000000;
    return bufferOf(device, D3DFVF_XYZ | D3DFVF_DIFFUSE, mesh.vertexCount, [&](uint32_t i) {
      return ColoredVertex{position(mesh, i), color};
    });
  }
  if (view.settings.renderMode == renderLit) {
    const D3DCOLOR color = packColor(view.scene.model->materials[mesh.materialIndex].color);
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

constexpr uint8_t specialFlags = renderAlphaTest | renderSelfLight;
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

bool isDrawable(const Mesh& mesh) {
  return mesh.vertexBuffer && mesh.indexBuffer && mesh.visibility != 0;
}

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

/// Plain meshes first, then those whose materials want more, from either side; those that need light not
/// without it.
void drawTextured(const Model& model, bool lit, IDirect3DDevice9& device) {
  const auto draw = [&](bool special, const auto& setState) {
    for (const Mesh& mesh : model.meshes) {
      const Material& material = model.materials[mesh.materialIndex];
      const bool isSpecial = (material.renderFlags & specialFlags) != 0;
      if (isSpecial != special || !isDrawable(mesh) || material.hasTexture == 0) continue;
      if (special && !lit && (material.renderFlags & renderNeedsLight) != 0) continue;
      setState(material);
      device.state.texture = material.texture;
      drawMesh(mesh, device);
    }
  };
  draw(false, [](const Material&) {});
  device.state.cullMode = D3DCULL_NONE;
  const DeviceState plain = device.state;
  draw(true, [&](const Material& material) {
    device.state = plain;
    applyRenderFlags(material.renderFlags, device.state);
  });
}

}  // namespace

void drawModel(const Model& model, uint8_t renderMode, uint8_t lightMode, IDirect3DDevice9& device) {
  if (renderMode > renderTextured) return;
  const StateScope scope(device);
  const bool wires = renderMode == renderWireframe, lit = !wires && lightMode != lightOff;
  device.state.cullMode = wires ? D3DCULL_NONE : D3DCULL_CCW;
  device.state.fillMode = wires ? D3DFILL_WIREFRAME : D3DFILL_SOLID;
  device.state.lighting = lit;
  if (renderMode == renderTextured) return drawTextured(model, lit, device);
  for (const Mesh& mesh : model.meshes)
    if (isDrawable(mesh)) drawMesh(mesh, device);
}

}  // namespace facet

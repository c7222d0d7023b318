#include "render/draw_model.h"

#include "render/view.h"

namespace facet {

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

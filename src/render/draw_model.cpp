#include "render/draw_model.h"

#include "render/mesh_buffers.h"

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

/// The meshes of a model in one render mode.
struct Drawing {
  const Model& model;
  uint8_t renderMode;
  bool lit;
  IDirect3DDevice9& device;
};

const Material& materialOf(const Drawing& drawing, const Mesh& mesh) {
  return drawing.model.materials[mesh.materialIndex];
}

bool isDrawable(const Mesh& mesh) {
  return mesh.vertexBuffer && mesh.indexBuffer && mesh.visibility != 0;
}

void drawMesh(const Drawing& drawing, const Mesh& mesh) {
  drawing.device.SetStreamSource(0, mesh.vertexBuffer, 0, vertexLayouts[drawing.renderMode].stride);
  drawing.device.SetIndices(mesh.indexBuffer);
  drawing.device.DrawIndexedPrimitive(D3DPT_TRIANGLELIST, 0, 0, mesh.vertexCount, 0, mesh.indexCount / 3);
}

void setSurface(const Drawing& drawing, D3DCULL cull, D3DFILLMODE fill) {
  drawing.device.SetRenderState(D3DRS_CULLMODE, cull);
  drawing.device.SetRenderState(D3DRS_FILLMODE, fill);
  drawing.device.SetFVF(vertexLayouts[drawing.renderMode].fvf);
}

void setLighting(const Drawing& drawing, bool on) {
  if (drawing.lit) drawing.device.SetRenderState(D3DRS_LIGHTING, on ? 1 : 0);
}

void drawAll(const Drawing& drawing) {
  for (const Mesh& mesh : drawing.model.meshes)
    if (isDrawable(mesh)) drawMesh(drawing, mesh);
}

void drawOpaque(const Drawing& drawing) {
  for (const Mesh& mesh : drawing.model.meshes) {
    const Material& material = materialOf(drawing, mesh);
    if (!isDrawable(mesh) || (material.renderFlags & specialFlags) != 0 || material.hasTexture == 0) continue;
    drawing.device.SetTexture(0, material.texture);
    drawMesh(drawing, mesh);
  }
}

void drawSpecial(const Drawing& drawing) {
  for (const Mesh& mesh : drawing.model.meshes) {
    const Material& material = materialOf(drawing, mesh);
    if (!isDrawable(mesh) || (material.renderFlags & specialFlags) == 0 || material.hasTexture == 0) continue;
    if (!drawing.lit && (material.renderFlags & renderNeedsLight) != 0) continue;
    const MaterialStates states = applyMaterialStates(material.renderFlags, drawing.device);
    drawing.device.SetTexture(0, material.texture);
    drawMesh(drawing, mesh);
    setLighting(drawing, true);
    if (states.alphaBlendOn) drawing.device.SetRenderState(D3DRS_ALPHABLENDENABLE, 0);
    if (states.alphaTestOn) drawing.device.SetRenderState(D3DRS_ALPHATESTENABLE, 0);
  }
}

void drawTextured(const Drawing& drawing) {
  drawOpaque(drawing);
  drawing.device.SetRenderState(D3DRS_CULLMODE, D3DCULL_NONE);
  drawSpecial(drawing);
  drawing.device.SetTexture(0, nullptr);
}

}  // namespace

MaterialStates applyMaterialStates(uint8_t renderFlags, IDirect3DDevice9& device) {
  MaterialStates states;
  if ((renderFlags & renderAlphaTest) != 0) {
    device.SetRenderState(D3DRS_ALPHATESTENABLE, 1);
    states.alphaTestOn = true;
  }
  device.SetRenderState(D3DRS_ALPHAREF, renderFlags == renderAlphaTest ? 128 : 0);
  for (const BlendRow& row : blendTable) {
    if ((renderFlags & blendFlags) != row.flags) continue;
    if (row.unlit) device.SetRenderState(D3DRS_LIGHTING, 0);
    device.SetRenderState(D3DRS_SRCBLEND, row.source);
    device.SetRenderState(D3DRS_DESTBLEND, row.destination);
    device.SetRenderState(D3DRS_ALPHABLENDENABLE, 1);
    states.alphaBlendOn = true;
  }
  return states;
}

void drawModel(const Model& model, uint8_t renderMode, uint8_t lightMode, IDirect3DDevice9& device) {
  const Drawing drawing{model, renderMode, lightMode != 0, device};
  if (renderMode == renderWireframe) {
    setSurface(drawing, D3DCULL_NONE, D3DFILL_WIREFRAME);
    drawAll(drawing);
  } else if (renderMode == renderLit || renderMode == renderTextured) {
    setLighting(drawing, true);
    setSurface(drawing, D3DCULL_CCW, D3DFILL_SOLID);
    renderMode == renderLit ? drawAll(drawing) : drawTextured(drawing);
    setLighting(drawing, false);
  }
}

}  // namespace facet

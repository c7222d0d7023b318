#include "render/mesh_buffers.h"

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
static_assert(sizeof(ColoredVertex) == vertexLayouts[renderWireframe].stride);
static_assert(sizeof(LitVertex) == vertexLayouts[renderLit].stride);
static_assert(sizeof(TexturedVertex) == vertexLayouts[renderTextured].stride);

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

void writeVertices(const ModelView& view, const Mesh& mesh, void* memory) {
  if (view.renderMode == renderWireframe) {
    const D3DCOLOR color = view.backgroundIndex == 0 ? 0x00FFFF00 : 0x00000000;
    auto* out = static_cast<ColoredVertex*>(memory);
    for (uint32_t i = 0; i < mesh.vertexCount; ++i) out[i] = {position(mesh, i), color};
  } else if (view.renderMode == renderLit) {
    const D3DCOLOR color = packColor(view.model->materials[mesh.materialIndex].color);
    auto* out = static_cast<LitVertex*>(memory);
    for (uint32_t i = 0; i < mesh.vertexCount; ++i) out[i] = {position(mesh, i), mesh.normals[i], color};
  } else {
    auto* out = static_cast<TexturedVertex*>(memory);
    for (uint32_t i = 0; i < mesh.vertexCount; ++i)
      out[i] = {position(mesh, i), mesh.normals[i], mesh.vertices[i].u, mesh.vertices[i].v};
  }
}

void buildMeshBuffer(const ModelView& view, Mesh& mesh) {
  const VertexLayout& layout = vertexLayouts[view.renderMode];
  mesh.vertexBuffer.reset();
  const uint64_t size = uint64_t{mesh.vertexCount} * layout.stride;
  if (size > UINT32_MAX) return;
  const auto length = static_cast<uint32_t>(size);
  if (view.p_device->CreateVertexBuffer(length, D3DUSAGE_WRITEONLY, layout.fvf, D3DPOOL_MANAGED,
                                        &mesh.vertexBuffer) != D3D_OK)
    return;
  void* memory = nullptr;
  if (mesh.vertexBuffer->Lock(0, length, &memory, 0) == D3D_OK) writeVertices(view, mesh, memory);
  mesh.vertexBuffer->Unlock();
}

}  // namespace

void buildMeshBuffers(ModelView& view) {
  view.buffersBuilt = true;
  view.sceneMaterial = materialOf(view.renderMode);
  view.p_device->SetMaterial(view.sceneMaterial);
  for (Mesh& mesh : view.model->meshes) buildMeshBuffer(view, mesh);
}

}  // namespace facet

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
  IDirect3DDevice9& device = *view.p_device;
  if (view.renderMode == renderWireframe) {
    const D3DCOLOR color = view.backgroundIndex == 0 ? 0x00FFFF00 : 0x00000000;
    return bufferOf(device, D3DFVF_XYZ | D3DFVF_DIFFUSE, mesh.vertexCount, [&](uint32_t i) {
      return ColoredVertex{position(mesh, i), color};
    });
  }
  if (view.renderMode == renderLit) {
    const D3DCOLOR color = packColor(view.model->materials[mesh.materialIndex].color);
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
  view.p_device->state.material = materialOf(view.renderMode);
  for (Mesh& mesh : view.model->meshes) {
    mesh.vertexBuffer.reset();
    mesh.vertexBuffer = meshBuffer(view, mesh);
  }
  view.buffersBuilt = true;
}

}  // namespace facet

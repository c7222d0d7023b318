#include "render/closer_look.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <glm/glm.hpp>
#include <unordered_map>

#include "render/glm_vector.h"
#include "render/navigation.h"
#include "render/scene.h"

namespace facet {

namespace {

struct LineVertex {
  Vector3 position;
  D3DCOLOR color;
};
constexpr uint32_t lineFvf = D3DFVF_XYZ | D3DFVF_DIFFUSE;
constexpr D3DCOLOR boxColor = 0x00FFD040, normalColor = 0x0060C8FF, outlineColor = 0x00FF8000,
                   distanceColor = 0x00FFFF00;

LineBuffer makeLines(IDirect3DDevice9& device, const std::vector<LineVertex>& ends) {
  LineBuffer lines{nullptr, static_cast<uint32_t>(ends.size() / 2), true};
  const auto bytes = std::as_bytes(std::span(ends));
  if (!ends.empty() && bytes.size() <= UINT32_MAX)
    lines.vertices = device.CreateVertexBuffer(lineFvf, {bytes.begin(), bytes.end()});
  return lines;
}

template <class Use>
void forEachShown(const Model& model, Use use) {
  for (const Mesh& mesh : model.meshes)
    if (!mesh.hidden) use(mesh);
}

void addBox(const Mesh& mesh, D3DCOLOR color, std::vector<LineVertex>& ends) {
  if (mesh.vertexCount == 0) return;
  const Box box = vertexBox(mesh);
  const auto corner = [&](int i) {
    return LineVertex{{(i & 1) ? box.high.x : box.low.x, (i & 2) ? box.high.y : box.low.y,
                       (i & 4) ? box.high.z : box.low.z},
                      color};
  };
  for (int i = 0; i < 8; ++i)
    for (const int axis : {1, 2, 4})
      if ((i & axis) == 0) ends.insert(ends.end(), {corner(i), corner(i | axis)});
}

std::vector<LineVertex> boxesOf(const Model& model) {
  std::vector<LineVertex> ends;
  forEachShown(model, [&](const Mesh& mesh) { addBox(mesh, boxColor, ends); });
  return ends;
}

std::vector<LineVertex> normalsOf(const Model& model) {
  const float length = boundingSphere(model).radius / 60;
  std::vector<LineVertex> ends;
  forEachShown(model, [&](const Mesh& mesh) {
    for (uint32_t i = 0; i < mesh.vertexCount; ++i) {
      const Vector3& n = mesh.normals[i];
      const Vertex& v = mesh.vertices[i];
      ends.push_back({{v.x, v.y, v.z}, normalColor});
      ends.push_back({{v.x + length * n.x, v.y + length * n.y, v.z + length * n.z}, normalColor});
    }
  });
  return ends;
}

/// Numbers equal places alike, so that triangles on both sides of a seam of textures or normals are
/// neighbours.
std::vector<uint32_t> placesOf(const Mesh& mesh) {
  struct Hash {
    size_t operator()(const std::array<float, 3>& place) const {
      uint32_t bits[3];
      std::memcpy(bits, place.data(), sizeof bits);
      return (bits[0] * 0x9E3779B97F4A7C15u ^ bits[1]) * 0x9E3779B97F4A7C15u ^ bits[2];
    }
  };
  std::unordered_map<std::array<float, 3>, uint32_t, Hash> known(mesh.vertexCount);
  std::vector<uint32_t> places(mesh.vertexCount);
  for (uint32_t i = 0; i < mesh.vertexCount; ++i) {
    const Vertex& v = mesh.vertices[i];
    places[i] = known.try_emplace({v.x + 0.0f, v.y + 0.0f, v.z + 0.0f}, i).first->second;
  }
  return places;
}

std::vector<TriangleEdge> edgesOf(const Mesh& mesh) {
  const std::vector<uint32_t> places = placesOf(mesh);
  std::vector<TriangleEdge> edges;
  edges.reserve(mesh.indexCount);
  for (uint32_t i = 0; i + 2 < mesh.indexCount; i += 3) {
    const uint16_t* at = &mesh.indices[i];
    if (std::max({at[0], at[1], at[2]}) >= mesh.vertexCount) continue;
    for (int k = 0; k < 3; ++k) {
      const uint64_t a = places[at[k]], b = places[at[(k + 1) % 3]];
      edges.push_back({std::min(a, b) << 32 | std::max(a, b), i});
    }
  }
  std::ranges::sort(edges, {}, &TriangleEdge::places);
  return edges;
}

/// The edges where what faces the viewer ends: those of one triangle alone, and those between one that faces
/// the eye, or the way that a parallel projection looks, and one that does not.
void addOutline(const Mesh& mesh, const std::vector<TriangleEdge>& edges, const Camera& camera,
                const glm::vec3& forward, std::vector<LineVertex>& ends) {
  const glm::vec3 eye(camera.eyePosition.x, camera.eyePosition.y, camera.eyePosition.z);
  const auto faces = [&](uint32_t triangle) {
    const uint16_t* at = &mesh.indices[triangle];
    const glm::vec3 a = toGlm(mesh.vertices[at[0]]);
    const glm::vec3 normal = cross(toGlm(mesh.vertices[at[1]]) - a, toGlm(mesh.vertices[at[2]]) - a);
    return dot(normal, camera.orthoHeight > 0 ? forward : a - eye) < 0;
  };
  for (size_t begin = 0; begin < edges.size();) {
    size_t end = begin + 1;
    while (end < edges.size() && edges[end].places == edges[begin].places) ++end;
    bool differs = end == begin + 1;
    for (size_t i = begin + 1; i < end; ++i)
      differs |= faces(edges[i].triangle) != faces(edges[begin].triangle);
    if (differs)
      for (const uint64_t place : {edges[begin].places >> 32, edges[begin].places & UINT32_MAX})
        ends.push_back({fromGlm(toGlm(mesh.vertices[place])), outlineColor});
    begin = end;
  }
}

/// Outlines; boxes where those would take too long to find for each frame.
std::vector<LineVertex> outlinesOf(ModelView& view, const glm::vec3& forward) {
  constexpr uint64_t mostTriangles = 100'000;
  Scene& scene = view.scene;
  const std::vector<Mesh>& meshes = scene.model->meshes;
  uint64_t triangles = 0;
  for (const uint32_t i : scene.selected) triangles += meshes[i].indexCount / 3;
  std::vector<LineVertex> ends;
  if (triangles > mostTriangles) {
    for (const uint32_t i : scene.selected) addBox(meshes[i], outlineColor, ends);
    return ends;
  }
  if (scene.edgesOf != scene.selected) {
    scene.edges.clear();
    for (const uint32_t i : scene.selected) scene.edges.push_back(edgesOf(meshes[i]));
    scene.edgesOf = scene.selected;
  }
  for (size_t i = 0; i < scene.selected.size(); ++i)
    addOutline(meshes[scene.selected[i]], scene.edges[i], view.camera, forward, ends);
  return ends;
}

void draw(IDirect3DDevice9& device, const LineBuffer& lines) {
  if (lines.vertices) device.DrawPrimitive(D3DPT_LINELIST, lines.vertices, 0, lines.lines);
}

/// The triangles' edges, in a colour that the ambient light alone gives.
void drawWires(ModelView& view, IDirect3DDevice9& device) {
  const Restored state(device.state);
  device.state.cullMode = D3DCULL_NONE;
  device.state.fillMode = D3DFILL_WIREFRAME;
  device.state.lighting = device.state.lightEnable = true;
  device.state.light = {};
  device.state.light.Ambient = {0.02f, 0.06f, 0.12f, 1};
  device.state.material = {};
  device.state.material.Ambient = {1, 1, 1, 1};
  device.state.texture = nullptr;
  for (const Mesh& mesh : view.scene.model->meshes)
    if (isDrawable(mesh)) device.DrawIndexedPrimitive(mesh.vertexBuffer, mesh.indexBuffer);
}

/// Brings what is drawn nearer to the eye, in depth alone: by next to nothing, so that lines on a surface are
/// not lost in it, or before everything else.
void bringForward(D3DMATRIX& projection, bool beforeAll) {
  constexpr float nearer = 2e-5f;
  constexpr float foremost = 1e-6f;
  for (auto& row : projection.m) row[2] = beforeAll ? row[2] * foremost : row[2] - nearer * row[3];
}

std::shared_ptr<IDirect3DTexture9> makeChecker(IDirect3DDevice9& device) {
  constexpr uint32_t side = 256, squares = 8;
  constexpr std::array<std::array<float, 3>, squares> rows = {{{0.9f, 0.25f, 0.2f},
                                                               {0.95f, 0.55f, 0.15f},
                                                               {0.9f, 0.85f, 0.2f},
                                                               {0.35f, 0.75f, 0.25f},
                                                               {0.2f, 0.75f, 0.75f},
                                                               {0.25f, 0.45f, 0.9f},
                                                               {0.55f, 0.3f, 0.85f},
                                                               {0.85f, 0.35f, 0.7f}}};
  std::vector<ImageLevel> levels;
  for (uint32_t size = side; size > 0; size /= 2) {
    ImageLevel level;
    level.width = level.height = size;
    for (uint32_t y = 0; y < size; ++y)
      for (uint32_t x = 0; x < size; ++x) {
        const uint32_t row = y * squares / size, column = x * squares / size;
        const float bright = ((row + column) % 2 == 0 ? 0.55f : 1.0f) *
                             (0.6f + 0.4f * static_cast<float>(column) / (squares - 1));
        for (const size_t channel : {2, 1, 0})
          level.bytes.push_back(static_cast<std::byte>(255 * bright * rows[row][channel]));
        level.bytes.push_back(std::byte{255});
      }
    levels.push_back(std::move(level));
  }
  return device.CreateTexture(D3DFMT_A8R8G8B8, std::move(levels));
}

}  // namespace

void visibleMeshesChanged(Scene& scene) {
  scene.boxLines = scene.normalLines = {};
  scene.bounds.reset();
}

void drawCloserLook(ModelView& view) {
  Scene& scene = view.scene;
  const ViewSettings& settings = view.settings;
  IDirect3DDevice9& device = *view.system.p_device;
  const Restored state(device.state);
  device.state.cullMode = D3DCULL_NONE;
  device.state.fillMode = D3DFILL_WIREFRAME;
  device.state.lighting = false;
  device.state.texture = nullptr;
  bringForward(device.state.projection, false);
  if (settings.wires && (settings.renderMode != renderWireframe || settings.uvChecker))
    drawWires(view, device);
  if (settings.boxes && !scene.boxLines.built) scene.boxLines = makeLines(device, boxesOf(*scene.model));
  if (settings.boxes) draw(device, scene.boxLines);
  if (settings.normals && !scene.normalLines.built)
    scene.normalLines = makeLines(device, normalsOf(*scene.model));
  if (settings.normals) draw(device, scene.normalLines);

  bringForward(device.state.projection, true);
  if (!scene.selected.empty()) {
    const D3DMATRIX& m = device.state.view;
    draw(device, makeLines(device, outlinesOf(view, {m.m[0][2], m.m[1][2], m.m[2][2]})));
  }
  if (scene.measured.size() == 2)
    draw(device, makeLines(device, {{scene.measured[0], distanceColor}, {scene.measured[1], distanceColor}}));
}

void drawChecked(ModelView& view, const Vector3& forward) {
  IDirect3DDevice9& device = *view.system.p_device;
  if (!view.system.checker) view.system.checker = makeChecker(device);
  const Restored state(device.state);
  device.state.cullMode = D3DCULL_CCW;
  device.state.fillMode = D3DFILL_SOLID;
  device.state.lighting = device.state.lightEnable = true;
  device.state.material = {};
  device.state.material.Ambient = device.state.material.Diffuse = {1, 1, 1, 1};
  device.state.light = {};
  device.state.light.Ambient = {0.5f, 0.5f, 0.5f, 1};
  device.state.light.Diffuse = {0.6f, 0.6f, 0.6f, 1};
  device.state.light.Direction = {forward.x, forward.y, forward.z};
  device.state.texture = view.system.checker;
  device.state.filter = D3DTEXF_LINEAR;
  device.state.mipFilter = D3DTEXF_LINEAR;
  device.state.colorOp = D3DTOP_MODULATE;
  for (const Mesh& mesh : view.scene.model->meshes)
    if (isDrawable(mesh)) device.DrawIndexedPrimitive(mesh.vertexBuffer, mesh.indexBuffer);
}

std::optional<float> measuredDistance(const Scene& scene) {
  if (scene.measured.size() != 2) return {};
  const Vector3 &a = scene.measured[0], &b = scene.measured[1];
  return std::hypot(b.x - a.x, b.y - a.y, b.z - a.z);
}

}  // namespace facet

#include "model/model.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "platform/parallel.h"

namespace facet {

void failTooManyObjects() {
  messageBox("too many objects", "ASSERT", MB_ICONHAND | MB_SYSTEMMODAL);
  throw LoadError("too many objects");
}

void allocateVertices(Mesh& mesh, uint32_t count) {
  mesh.vertices = std::make_unique_for_overwrite<Vertex[]>(count);
  mesh.normals = std::make_unique_for_overwrite<Vector3[]>(count);
  mesh.vertexCount = count;
  mesh.vertexBuffer = nullptr;
}

void allocateIndices(Mesh& mesh, uint32_t count) {
  mesh.indices = std::make_unique_for_overwrite<uint16_t[]>(count);
  mesh.indexCount = count;
}

std::span<const Material> ownMaterials(const Model& model) {
  const uint32_t count = std::min<uint32_t>(model.materialCount, model.materials.size());
  return {model.materials.data(), count - std::min(count, skyMaterialCount)};
}

std::string missingTexturesCount(const Model& model) {
  if (model.missingTextures.empty()) return {};
  return std::to_string(model.texturesNamed - model.texturesFound) + " of " +
         std::to_string(model.texturesNamed) +
         (model.texturesNamed == 1 ? " texture missing" : " textures missing");
}

namespace {

void countElements(Model& model) {
  model.totalVertices = 0;
  model.totalIndices = 0;
  for (const Mesh& mesh : model.meshes) {
    model.totalVertices += mesh.vertexCount;
    model.totalIndices += mesh.indexCount;
  }
}

}  // namespace

unsigned usefulThreads(const Model& model) {
  constexpr uint64_t perThread = 50'000;  // with less to do a further thread costs more than it brings
  const uint64_t elements = uint64_t{model.totalVertices} + model.totalIndices;
  return static_cast<unsigned>(std::clamp<uint64_t>(elements / perThread, 1, threadCount()));
}

void releaseModel(Model& model) {
  // Each owner drops its references; a shared texture ends with its last one.
  model.materials.clear();
  model.meshes.clear();
  model.materialCount = 0;
  model.meshCount = 0;
}

void removeMeshes(Model& model, const std::vector<bool>& left) {
  constexpr uint32_t gone = UINT32_MAX;
  std::vector<uint32_t> numbers(model.materials.size(), gone);  // of the materials, afterwards
  std::vector<Mesh> kept;
  for (size_t i = 0; i < model.meshes.size(); ++i) {
    Mesh& mesh = model.meshes[i];
    const bool stays = i >= left.size() || !left[i];
    if (stays && mesh.materialIndex < numbers.size()) numbers[mesh.materialIndex] = 0;
    if (stays) kept.push_back(std::move(mesh));
  }
  std::vector<Material> used;
  for (size_t i = 0; i < model.materials.size(); ++i) {
    if (numbers[i] == gone && i < ownMaterials(model).size()) continue;
    numbers[i] = static_cast<uint32_t>(used.size());
    used.push_back(std::move(model.materials[i]));
  }
  for (Mesh& mesh : kept)
    if (mesh.materialIndex < numbers.size()) mesh.materialIndex = numbers[mesh.materialIndex];
  model.meshes = std::move(kept);
  model.materials = std::move(used);
  model.meshCount = static_cast<uint32_t>(model.meshes.size());
  model.materialCount = static_cast<uint32_t>(model.materials.size());
  countElements(model);
}

namespace {

/// Ground and water stay visible however far away they are.
bool isNeverCulled(const Material& material) {
  return material.textureName.find("terrain") != std::string::npos ||
         material.shaderName.find("water") != std::string::npos;
}

/// None for a mesh whose indices would pass 4 GiB.
void createIndexBuffer(IDirect3DDevice9& device, Mesh& mesh) {
  mesh.indexBuffer = nullptr;
  if (mesh.indexCount > UINT32_MAX / sizeof(uint16_t)) return;
  const uint16_t* first = mesh.indices.get();
  mesh.indexBuffer = device.CreateIndexBuffer({first, first + mesh.indexCount});
}

Vector3 faceNormal(const Vertex& a, const Vertex& b, const Vertex& c) {
  const Vector3 e1 = {b.x - a.x, b.y - a.y, b.z - a.z};
  const Vector3 e2 = {c.x - a.x, c.y - a.y, c.z - a.z};
  const Vector3 cross = {e1.y * e2.z - e1.z * e2.y, e1.z * e2.x - e1.x * e2.z, e1.x * e2.y - e1.y * e2.x};
  const float length = std::sqrt((cross.x * cross.x + cross.y * cross.y) + cross.z * cross.z);
  if (length == 0) return {0, 0, 0};
  const float scale = 1 / length;
  return {cross.x * scale, cross.y * scale, cross.z * scale};
}

/// Bounds and normals of every mesh, on all cores.
void computeShapes(Model& model) {
  const auto shape = [&](size_t i) {
    computeBounds(model.meshes[i]);
    computeNormals(model.meshes[i]);
  };
  parallelFor(model.meshes.size(), shape, usefulThreads(model));
}

}  // namespace

Box vertexBox(const Mesh& mesh) {
  if (mesh.vertexCount == 0) return {};
  Vector3 low = {mesh.vertices[0].x, mesh.vertices[0].y, mesh.vertices[0].z};
  Vector3 high = low;
  const auto extend = [](float value, float& least, float& most) {
    if (value < least) least = value;
    if (value > most) most = value;
  };
  for (uint32_t i = 0; i < mesh.vertexCount; ++i) {
    const Vertex& vertex = mesh.vertices[i];
    extend(vertex.x, low.x, high.x);
    extend(vertex.y, low.y, high.y);
    extend(vertex.z, low.z, high.z);
  }
  return {low, high};
}

void computeBounds(Mesh& mesh) {
  if (mesh.vertexCount == 0) return;
  const auto [low, high] = vertexBox(mesh);
  mesh.boundsMin = low;
  mesh.boundsMax = high;
  mesh.center = {(low.x + high.x) * 0.5f, (low.y + high.y) * 0.5f, (low.z + high.z) * 0.5f};
  const Vector3 size = {low.x - high.x, low.y - high.y, low.z - high.z};
  mesh.radius = std::sqrt((size.x * size.x + size.y * size.y) + size.z * size.z) * 0.5f;
}

void computeNormals(Mesh& mesh) {
  for (uint32_t k = 0; k + 3 <= mesh.indexCount; k += 3) {
    const uint16_t a = mesh.indices[k], b = mesh.indices[k + 1], c = mesh.indices[k + 2];
    if (a >= mesh.vertexCount || b >= mesh.vertexCount || c >= mesh.vertexCount) continue;
    const Vector3 normal = faceNormal(mesh.vertices[a], mesh.vertices[b], mesh.vertices[c]);
    mesh.normals[c] = normal;
    mesh.normals[b] = normal;
    mesh.normals[a] = normal;
  }
}

void finishModel(Model& model) {
  for (Mesh& mesh : model.meshes)
    if (mesh.materialIndex < model.materials.size() && isNeverCulled(model.materials[mesh.materialIndex]))
      mesh.visibility = 2;
  countElements(model);
  if (model.modelType == modelTypeObject || model.modelType == modelType4a) computeShapes(model);
  if (model.device == nullptr) return;
  for (Mesh& mesh : model.meshes) createIndexBuffer(*model.device, mesh);
}

}  // namespace facet

#include "scene.h"

namespace facet::sample {

namespace {

// The shader names bring every way of drawing: opaque, alpha-tested, blended, and the unlit kinds.
std::vector<SampleMaterial> sceneMaterials() {
  std::vector<SampleMaterial> list(materialCount);
  list[terrainMaterial] = {"terrain\\terrain_island", "default"};
  list[towerMaterial] = {"build\\tower", "models\\model"};
  list[metalMaterial] = {"build\\red_metal", "models\\model"};
  list[stoneMaterial] = {"build\\stone", "def_vertex"};
  list[houseMaterial] = {"build\\house", "default"};
  list[roofMaterial] = {"build\\roof_tiles", "default"};
  list[plankMaterial] = {"build\\planks", "default"};
  list[windowMaterial] = {"build\\window", "models\\window"};
  list[barkMaterial] = {"nature\\bark", "default"};
  list[rockMaterial] = {"nature\\rock", "default"};
  list[hullMaterial] = {"props\\boat_hull", "models\\model"};
  list[crateMaterial] = {"props\\crate", "def_vertex"};
  list[barrelMaterial] = {"props\\barrel", "model"};
  list[fenceMaterial] = {"build\\planks", "def_vertex"};
  list[pineMaterial] = {"nature\\pine_needles", "details\\foliage"};
  list[leafMaterial] = {"nature\\leaves", "details\\foliage"};
  list[grassMaterial] = {"nature\\grass", "details\\set"};
  list[sailMaterial] = {"props\\sail", "models\\cloth"};
  list[lanternMaterial] = {"effects\\lamp_glass", "default_light"};
  list[waterMaterial] = {"effects\\sea", "effects\\water"};
  list[foamMaterial] = {"effects\\foam", "default_water"};
  list[netMaterial] = {"props\\net", "effects\\pautina"};
  list[glassMaterial] = {"build\\glass", "default_trans"};
  list[lampMaterial] = {"effects\\lamp_glass", "models\\selflightl"};
  list[beamMaterial] = {"effects\\beam", "effects\\selflight"};
  list[glowMaterial] = {"effects\\glow", "effects\\lightplanes"};
  return list;
}

void widen(Bounds& bounds, Vec3 p) {
  bounds.low = {std::min(bounds.low.x, p.x), std::min(bounds.low.y, p.y), std::min(bounds.low.z, p.z)};
  bounds.high = {std::max(bounds.high.x, p.x), std::max(bounds.high.y, p.y), std::max(bounds.high.z, p.z)};
}

Bounds emptyBounds() {
  return {{1e9f, 1e9f, 1e9f}, {-1e9f, -1e9f, -1e9f}, {}, 0};
}

void complete(Bounds& bounds) {
  bounds.center = (bounds.low + bounds.high) * 0.5f;
  bounds.radius = length(bounds.high - bounds.low) / 2;
}

}  // namespace

Bounds meshBounds(const SampleMesh& mesh) {
  Bounds bounds = emptyBounds();
  for (const SampleVertex& vertex : mesh.vertices) widen(bounds, vertex.position);
  complete(bounds);
  return bounds;
}

Bounds sceneBounds(const Scene& scene) {
  Bounds bounds = emptyBounds();
  for (const SampleMesh& mesh : scene.meshes) {
    for (const SampleVertex& vertex : mesh.vertices) widen(bounds, vertex.position);
  }
  complete(bounds);
  return bounds;
}

std::vector<std::span<const SampleMesh>> meshGroups(const Scene& scene) {
  std::span<const SampleMesh> rest = scene.meshes;
  std::vector<std::span<const SampleMesh>> groups;
  while (!rest.empty()) {
    size_t size = 1;
    while (size < rest.size() && rest[size].group == rest[0].group) ++size;
    groups.push_back(rest.first(size));
    rest = rest.subspan(size);
  }
  return groups;
}

SampleMesh& addMesh(Scene& scene, const std::string& group, const std::string& name, MaterialId material) {
  scene.meshes.push_back({name, group, material, {}, {}});
  return scene.meshes.back();
}

Scene makeScene() {
  Scene scene;
  scene.materials = sceneMaterials();
  addGround(scene);
  addLighthouse(scene);
  addHouse(scene);
  addHarbour(scene);
  addNature(scene);
  addSea(scene);
  addLights(scene);
  return scene;
}

}  // namespace facet::sample

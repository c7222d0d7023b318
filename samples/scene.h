#pragma once

#include <span>
#include <string>
#include <vector>

#include "shapes.h"

namespace facet::sample {

/// The materials of the scene, by their place in the list.
enum MaterialId : uint32_t {
  terrainMaterial,
  towerMaterial,
  metalMaterial,
  stoneMaterial,
  houseMaterial,
  roofMaterial,
  plankMaterial,
  windowMaterial,
  barkMaterial,
  rockMaterial,
  hullMaterial,
  crateMaterial,
  barrelMaterial,
  fenceMaterial,
  pineMaterial,
  leafMaterial,
  grassMaterial,
  sailMaterial,
  lanternMaterial,
  waterMaterial,
  foamMaterial,
  netMaterial,
  glassMaterial,
  lampMaterial,
  beamMaterial,
  glowMaterial,
  materialCount,
};

/// Names as a model file holds them: folders divided by a backslash, no extension.
struct SampleMaterial {
  std::string texture, shader;
};

/// A lighthouse on a small harbour island: x to the right, y up, z away from a viewer who arrives by boat.
/// Meshes stand in drawing order: what is blended comes last. A group's meshes follow each other.
struct Scene {
  std::vector<SampleMaterial> materials;
  std::vector<SampleMesh> meshes;
};

struct Bounds {
  Vec3 low, high, center;
  float radius = 0;
};
Bounds meshBounds(const SampleMesh& mesh);
Bounds sceneBounds(const Scene& scene);

/// The meshes of each group, in order.
std::vector<std::span<const SampleMesh>> meshGroups(const Scene& scene);

Scene makeScene();

/// A new mesh at the end of the scene, valid until the next one is added.
SampleMesh& addMesh(Scene& scene, const std::string& group, const std::string& name, MaterialId material);

/// The parts of makeScene.
void addGround(Scene& scene);
void addLighthouse(Scene& scene);
void addHouse(Scene& scene);
void addHarbour(Scene& scene);
void addNature(Scene& scene);
void addSea(Scene& scene);
void addLights(Scene& scene);

}  // namespace facet::sample

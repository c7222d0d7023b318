#include "island.h"
#include "scene.h"

namespace facet::sample {

namespace {

constexpr Placement tower{towerPlace, 0};
constexpr float galleryHeight = 9;
constexpr float lampHeight = galleryHeight + 1.6f;

// The place above a circle around the tower's axis.
Vec3 around(float radius, float turn, float y) {
  return {radius * std::cos(2 * pi * turn), y, radius * std::sin(2 * pi * turn)};
}

void addGalleryRails(SampleMesh& mesh) {
  constexpr int posts = 14;
  for (int i = 0; i < posts; ++i) {
    float here = float(i) / posts, next = float(i + 1) / posts;
    addBeam(mesh, tower, around(1.95f, here, galleryHeight + 0.2f),
            around(1.95f, here, galleryHeight + 1.15f), 0.07f, 1);
    for (float height : {0.65f, 1.12f}) {
      addBeam(mesh, tower, around(1.95f, here, galleryHeight + height),
              around(1.95f, next, galleryHeight + height), 0.05f, 1);
    }
  }
}

void addLanternFrame(SampleMesh& mesh) {
  constexpr int bars = 8;
  for (int i = 0; i < bars; ++i) {
    float turn = float(i) / bars;
    addBeam(mesh, tower, around(1.02f, turn, galleryHeight + 0.8f), around(1.02f, turn, galleryHeight + 2.5f),
            0.08f, 1);
  }
}

constexpr Placement doorPlace{towerPlace + Vec3{-1.3f, 0, -1.3f}, pi / 4};

void addDoorFrame(SampleMesh& stone) {
  addBox(stone, doorPlace, {-0.75f, -0.6f, -0.9f}, {0.75f, 0.12f, 0.3f}, 0.5f);
  addBox(stone, doorPlace, {-0.62f, 1.7f, -0.2f}, {0.62f, 1.95f, 0.3f}, 0.5f);
}

// A shaft of light along +z that widens; its texture runs along it.
void addBeamPlanes(SampleMesh& mesh, const Placement& at, float y) {
  for (bool upright : {false, true}) {
    auto plane = [&](float s, float t) {
      float aside = (s - 0.5f) * mix(0.7f, 5, 1 - t), forward = mix(22, 0.5f, t);
      return upright ? Vec3{0, y + aside, forward} : Vec3{aside, y, forward};
    };
    addSheet(mesh, at, 2, 8, plane, {0.03f, 0.03f, 0.97f, 0.97f});
  }
}

}  // namespace

void addLighthouse(Scene& scene) {
  SampleMesh& gallery = addMesh(scene, "lighthouse", "gallery", metalMaterial);
  addLathe(gallery, tower,
           {{1.42f, galleryHeight - 0.35f, 0.3f},
            {2.1f, galleryHeight, 0.5f},
            {2.1f, galleryHeight + 0.2f, 0.6f},
            {0, galleryHeight + 0.2f, 1}},
           20, 4);
  addGalleryRails(gallery);
  addLanternFrame(gallery);

  SampleMesh& shaft = addMesh(scene, "lighthouse", "tower", towerMaterial);
  addLathe(shaft, tower,
           {{2.0f, -0.4f, 1},
            {1.85f, 1.5f, 0.8f},
            {1.62f, 4.5f, 0.5f},
            {1.5f, 7, 0.25f},
            {1.42f, galleryHeight, 0}},
           28, 1);

  SampleMesh& base = addMesh(scene, "lighthouse", "tower_base", stoneMaterial);
  addLathe(base, tower, {{2.7f, -1.5f, 1}, {2.45f, 0.25f, 0.1f}, {1.8f, 0.3f, 0}}, 20, 6);
  addLathe(
      base, tower,
      {{1.1f, galleryHeight + 0.2f, 1}, {1.1f, galleryHeight + 0.8f, 0.4f}, {0.4f, galleryHeight + 0.85f, 0}},
      16, 4);
  addDoorFrame(base);

  SampleMesh& roof = addMesh(scene, "lighthouse", "lantern_roof", metalMaterial);
  addLathe(roof, tower,
           {{0.3f, galleryHeight + 2.45f, 1},
            {1.25f, galleryHeight + 2.45f, 0.9f},
            {1.25f, galleryHeight + 2.58f, 0.8f},
            {1.02f, galleryHeight + 2.95f, 0.6f},
            {0.62f, galleryHeight + 3.3f, 0.4f},
            {0.14f, galleryHeight + 3.5f, 0.2f},
            {0.2f, galleryHeight + 3.66f, 0.1f},
            {0.05f, galleryHeight + 3.85f, 0.05f},
            {0, galleryHeight + 4.5f, 0}},
           16, 3);

  SampleMesh& door = addMesh(scene, "lighthouse", "tower_door", plankMaterial);
  addBox(door, doorPlace, {-0.45f, 0, -0.15f}, {0.45f, 1.7f, 0.3f}, 0.5f);
}

void addLights(Scene& scene) {
  SampleMesh& glass = addMesh(scene, "lights", "lantern_glass", glassMaterial);
  addLathe(glass, tower, {{0.98f, galleryHeight + 0.8f, 1}, {0.98f, galleryHeight + 2.45f, 0}}, 16, 8);

  SampleMesh& lamp = addMesh(scene, "lights", "lamp", lampMaterial);
  addLathe(lamp, tower,
           {{0.1f, galleryHeight + 0.9f, 1},
            {0.42f, galleryHeight + 1.3f, 0.7f},
            {0.42f, galleryHeight + 1.9f, 0.3f},
            {0.1f, galleryHeight + 2.3f, 0}},
           12, 2);

  SampleMesh& beams = addMesh(scene, "lights", "light_beams", beamMaterial);
  for (float yaw : {0.45f * pi, 1.45f * pi}) addBeamPlanes(beams, {towerPlace, yaw}, lampHeight);

  SampleMesh& glow = addMesh(scene, "lights", "lamp_glow", glowMaterial);
  addCrossedCards(glow, {towerPlace + Vec3{0, lampHeight - 2.6f, 0}, 0.2f}, 3, 5.2f, 5.2f);
}

}  // namespace facet::sample

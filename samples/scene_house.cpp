#include "island.h"
#include "scene.h"

namespace facet::sample {

namespace {

/// A house of four walls under a gable roof whose ridge runs along x; its front faces -z.
struct GableHouse {
  Placement at;
  float halfWidth, halfDepth, wallHeight, ridgeHeight;
};

constexpr GableHouse home{{housePlace, -0.22f}, 3.1f, 2.0f, 2.5f, 4.3f};
constexpr GableHouse shed{{shedPlace, 0.5f}, 1.5f, 1.1f, 1.7f, 2.6f};

// `front` textures a long wall, `side` a gable up to its ridge.
void addWalls(SampleMesh& mesh, const GableHouse& house, UvRect front, UvRect side) {
  float w = house.halfWidth, d = house.halfDepth, h = house.wallHeight, top = house.ridgeHeight, foot = -0.5f;
  float eaves = mix(side.v0, side.v1, (top - h) / (top - foot)), middle = (side.u0 + side.u1) / 2;
  for (float turn : {0.0f, pi}) {
    Placement at{house.at.origin, house.at.yaw + turn};
    addQuad(mesh, at, {-w, h, -d}, {w, h, -d}, {w, foot, -d}, {-w, foot, -d}, front);
    addQuad(mesh, at, {-w, h, d}, {-w, h, -d}, {-w, foot, -d}, {-w, foot, d},
            {side.u0, eaves, side.u1, side.v1});
    addQuad(mesh, at, {-w, top, 0}, {-w, h, 0}, {-w, h, 0}, {-w, h, d}, {middle, side.v0, middle, eaves});
    mesh.vertices.back().u = side.u0;
    addQuad(mesh, at, {-w, top, 0}, {-w, h, -d}, {-w, h, 0}, {-w, h, 0}, {middle, side.v0, middle, eaves});
    mesh.vertices[mesh.vertices.size() - 3].u = side.u1;
    mesh.vertices[mesh.vertices.size() - 3].v = eaves;
  }
}

void addRoof(SampleMesh& mesh, const GableHouse& house, float uvPerUnit) {
  float over = 0.35f, w = house.halfWidth + over, d = house.halfDepth + over;
  float slope = (house.ridgeHeight - house.wallHeight) / house.halfDepth;
  float ridge = house.ridgeHeight + 0.12f, eaves = ridge - slope * d, thick = 0.12f;
  UvRect tiles{0, 0, 2 * w * uvPerUnit, std::hypot(d, d * slope) * uvPerUnit};
  for (float turn : {0.0f, pi}) {
    Placement at{house.at.origin, house.at.yaw + turn};
    Vec3 a{-w, ridge, 0}, b{w, ridge, 0}, c{w, eaves, -d}, e{-w, eaves, -d}, down{0, -thick, 0};
    addQuad(mesh, at, a, b, c, e, tiles);
    addQuad(mesh, at, e + down, c + down, b + down, a + down, tiles);
    addQuad(mesh, at, e, c, c + down, e + down, {0, 0, tiles.u1, 0.06f});
    addQuad(mesh, at, a, e, e + down, a + down, {0, 0, tiles.v1, 0.06f});
    addQuad(mesh, at, c, b, b + down, c + down, {0, 0, tiles.v1, 0.06f});
  }
}

void addWindow(SampleMesh& mesh, const Placement& wall, Vec3 middle, float width, float height) {
  Vec3 x{width / 2, 0, 0}, y{0, height / 2, 0};
  addQuad(mesh, wall, middle - x + y, middle + x + y, middle + x - y, middle - x - y);
}

void addWindows(SampleMesh& mesh) {
  float out = 0.03f;
  for (float x : {-2.1f, -0.95f, 1.0f, 2.15f})
    addWindow(mesh, home.at, {x, 1.45f, -home.halfDepth - out}, 0.8f, 1.05f);
  Placement back{home.at.origin, home.at.yaw + pi};
  for (float x : {-1.8f, 0.0f, 1.8f}) addWindow(mesh, back, {x, 1.45f, -home.halfDepth - out}, 0.8f, 1.05f);
  for (float turn : {0.5f * pi, 1.5f * pi}) {
    Placement side{home.at.origin, home.at.yaw + turn};
    for (float x : {-0.85f, 0.85f}) addWindow(mesh, side, {x, 1.45f, -home.halfWidth - out}, 0.8f, 1.05f);
    addWindow(mesh, side, {0, 3.1f, -home.halfWidth - out}, 0.6f, 0.7f);
  }
  addWindow(mesh, shed.at, {0.75f, 1.0f, -shed.halfDepth - out}, 0.6f, 0.6f);
}

// Posts with two rails along a line of points on the ground.
void addFence(SampleMesh& mesh, std::initializer_list<Vec3> corners) {
  const Vec3* from = corners.begin();
  for (const Vec3* to = from + 1; to != corners.end(); from = to++) {
    int spans = std::max(1, int(std::round(length(*to - *from) / 1.3f)));
    for (int i = 0; i < spans; ++i) {
      auto post = [&](int k) {
        Vec3 p = mix(*from, *to, float(k) / float(spans));
        return Vec3{p.x, islandHeight(p.x, p.z), p.z};
      };
      Vec3 here = post(i), next = post(i + 1);
      addBeam(mesh, {}, here - Vec3{0, 0.2f, 0}, here + Vec3{0, 0.9f, 0}, 0.12f, 0.5f);
      for (float y : {0.4f, 0.75f})
        addBeam(mesh, {}, here + Vec3{0, y, 0}, next + Vec3{0, y, 0}, 0.08f, 0.5f);
    }
  }
}

void addStonework(SampleMesh& mesh) {
  float w = home.halfWidth + 0.06f, d = home.halfDepth + 0.06f;
  addBox(mesh, home.at, {-w, -1.6f, -d}, {w, 0.25f, d}, 0.4f);
  addBox(mesh, home.at, {-0.2f, -0.3f, -d - 0.8f}, {1.0f - 0.6f, 0.12f, -d}, 0.4f);
  addBox(mesh, home.at, {1.3f, 3.0f, 0.35f}, {2.0f, 5.1f, 0.95f}, 0.4f);
  addBox(mesh, home.at, {1.22f, 5.1f, 0.27f}, {2.08f, 5.25f, 1.03f}, 0.4f);
  addBox(mesh, shed.at, {-1.55f, -1.6f, -1.15f}, {1.55f, 0.15f, 1.15f}, 0.4f);
}

void addDoors(SampleMesh& mesh) {
  addBox(mesh, home.at, {-0.38f, 0.1f, -home.halfDepth - 0.06f}, {0.45f, 1.98f, -home.halfDepth + 0.1f},
         0.5f);
  addBox(mesh, shed.at, {-0.9f, 0, -shed.halfDepth - 0.06f}, {-0.1f, 1.5f, -shed.halfDepth + 0.1f}, 0.5f);
  addBox(mesh, home.at, {-2.4f, 0.35f, -home.halfDepth - 0.55f}, {-0.9f, 0.45f, -home.halfDepth - 0.15f},
         0.5f);
  for (float x : {-2.2f, -1.1f})
    addBox(mesh, home.at, {x - 0.05f, 0, -home.halfDepth - 0.5f}, {x + 0.05f, 0.35f, -home.halfDepth - 0.2f},
           0.5f);
}

}  // namespace

void addHouse(Scene& scene) {
  addWalls(addMesh(scene, "house", "keepers_house", houseMaterial), home, {0, 0, 1, 0.45f},
           {0, 0.46f, 0.64f, 1});
  SampleMesh& roofs = addMesh(scene, "house", "roofs", roofMaterial);
  addRoof(roofs, home, 0.5f);
  addRoof(roofs, shed, 0.5f);
  addStonework(addMesh(scene, "house", "foundations", stoneMaterial));
  addWalls(addMesh(scene, "house", "shed", plankMaterial), shed, {0, 0, 1.5f, 2}, {0, 0, 1.1f, 2.82f});
  addDoors(addMesh(scene, "house", "doors_and_bench", plankMaterial));
  SampleMesh& fence = addMesh(scene, "house", "fence", fenceMaterial);
  addFence(fence,
           {{-2.6f, 0, 11.2f}, {-2.3f, 0, 14.6f}, {-3.8f, 0, 17.2f}, {-8.6f, 0, 17.8f}, {-10.8f, 0, 14.4f}});
  addFence(fence, {{6.6f, 0, 16.9f}, {8.6f, 0, 18.7f}, {11.6f, 0, 18.8f}});
  addWindows(addMesh(scene, "house", "windows", windowMaterial));
}

}  // namespace facet::sample

#include "island.h"
#include "noise.h"
#include "scene.h"

namespace facet::sample {

namespace {

constexpr Vec3 jettyEnd{0.6f, 0.75f, -3.0f};
constexpr float jettyLength = 8.6f, jettyHalfWidth = 0.85f;

/// An open boat with its bow towards +z and the water line at y = 0.
struct Boat {
  Placement at;
  float length, halfWidth, height;
  UvRect paint;
};

constexpr UvRect bluePaint{0.02f, 0, 0.48f, 1}, redPaint{0.52f, 0, 0.98f, 1};
constexpr Boat sailingBoat{{{-4.4f, 0, -0.4f}, 0.5f}, 4.6f, 0.85f, 0.6f, bluePaint};
constexpr Boat fishingBoat{{{3.9f, 0, -1.4f}, -0.35f}, 5.4f, 1.1f, 0.8f, redPaint};
constexpr Boat rowingBoat{{{-0.95f, 0, 1.8f}, 0.08f}, 2.8f, 0.55f, 0.36f, redPaint};
const Boat beachedBoat{
    {{-4.2f, islandHeight(-4.2f, 6.6f) + 0.1f, 6.6f}, 1.9f}, 2.8f, 0.55f, 0.36f, bluePaint};

float halfWidthAt(const Boat& boat, float along) {
  return boat.halfWidth * std::sqrt(clamp01(1 - std::pow(std::max(0.0f, along * 1.45f - 0.45f), 2.4f))) *
         mix(0.78f, 1, smoothstep(0, 0.4f, along));
}

float gunwaleAt(const Boat& boat, float along) {
  return boat.height * (1 + 0.5f * along * along * along);
}

// A point of the hull: `along` from stern to bow, `around` from the port gunwale over the keel to starboard.
Vec3 hullPoint(const Boat& boat, float along, float around) {
  float width = halfWidthAt(boat, along),
        depth = gunwaleAt(boat, along) + boat.height * 0.7f * (1 - along * 0.4f);
  float belly = std::pow(std::max(0.0f, std::sin(pi * around)), 0.75f);
  return {-std::cos(pi * around) * width, gunwaleAt(boat, along) - depth * belly,
          (along - 0.5f) * boat.length};
}

void addHull(SampleMesh& hull, const Boat& boat) {
  addSheet(
      hull, boat.at, 8, 6, [&](float s, float t) { return hullPoint(boat, 1 - s, t); }, boat.paint);
  auto transom = [&](float s, float t) {
    Vec3 p = hullPoint(boat, 0, t / 2);
    return Vec3{mix(p.x, -p.x, s), p.y, p.z};
  };
  addSheet(hull, boat.at, 1, 4, transom, {boat.paint.u0, 0, boat.paint.u1, 0.5f});
}

// The deck and the inner side of the hull above it.
void addDeck(SampleMesh& wood, const Boat& boat) {
  float level = boat.height * 0.42f;
  auto edge = [&](float along, float side, float y) {
    return Vec3{side * (halfWidthAt(boat, along) * 0.97f), y, (along - 0.5f) * boat.length};
  };
  auto deck = [&](float s, float t) { return edge(1 - t, 2 * s - 1, level); };
  addSheet(wood, boat.at, 2, 8, deck, {0, 0, boat.length * 0.5f, boat.length * 0.5f});
  for (float side : {-1.0f, 1.0f}) {
    auto wall = [&](float s, float t) {
      float along = side < 0 ? s : 1 - s;
      return edge(along, side, mix(gunwaleAt(boat, along), level, t));
    };
    addSheet(wood, boat.at, 8, 1, wall, {0, 0, boat.length * 0.5f, 0.25f});
  }
}

void addThwarts(SampleMesh& wood, const Boat& boat) {
  for (float along : {0.3f, 0.58f}) {
    float w = halfWidthAt(boat, along) * 0.95f, z = (along - 0.5f) * boat.length, y = boat.height * 0.8f;
    addBox(wood, boat.at, {-w, y - 0.05f, z - 0.12f}, {w, y, z + 0.12f}, 0.5f);
  }
}

void addRigging(SampleMesh& wood) {
  const Placement& at = sailingBoat.at;
  addLathe(wood, at, {{0.07f, 0.2f, 0}, {0.035f, 5.4f, 2}, {0, 5.45f, 2}}, 6, 1);
  addBeam(wood, at, {0, 1.05f, -0.05f}, {-0.7f, 1.05f, -1.9f}, 0.07f, 0.5f);
  addLathe(wood, fishingBoat.at, {{0.06f, 0.3f, 0}, {0.04f, 3.1f, 1}, {0, 3.15f, 1}}, 6, 1);
  addBeam(wood, fishingBoat.at, {0, 2.6f, 0}, {0, 1.5f, -2.2f}, 0.06f, 0.5f);
}

void addSails(SampleMesh& sails) {
  auto mainSail = [](float s, float t) {
    float reach = t * s, belly = 0.35f * std::sin(pi * s) * std::sin(pi * t);
    return Vec3{-0.7f * reach - belly, mix(5.2f, 1.15f, t), -0.08f - 1.8f * reach};
  };
  addSheet(sails, sailingBoat.at, 5, 6, mainSail, {0, 0, 0.74f, 1});
  auto jib = [](float s, float t) {
    float belly = 0.2f * std::sin(pi * s) * std::sin(pi * t);
    return Vec3{-belly, mix(4.6f, 1.2f, t), mix(0.1f, mix(0.15f, 2.1f, t), 1 - s)};
  };
  addSheet(sails, sailingBoat.at, 4, 5, jib, {0, 0, 0.74f, 1});
  auto flag = [](float s, float t) { return Vec3{s * 1.5f, 4.9f - t * 0.9f, 0.16f * s * std::sin(7 * s)}; };
  addSheet(sails, {housePlace + Vec3{3.6f, 0.2f, -3.4f}, 0.3f}, 6, 1, flag, {0.77f, 0, 0.99f, 1});
}

void addCabin(SampleMesh& walls, SampleMesh& roof) {
  constexpr UvRect whitewash{0.7f, 0.5f, 0.95f, 0.95f};
  addCrate(walls, fishingBoat.at, {-0.6f, 0.3f, 0.2f}, {0.6f, 1.6f, 1.3f}, whitewash);
  addBox(roof, fishingBoat.at, {-0.7f, 1.6f, 0.1f}, {0.7f, 1.7f, 1.4f}, 0.5f);
}

void addCabinWindows(SampleMesh& windows) {
  for (float turn : {0.0f, 0.5f, 1.0f, 1.5f}) {
    Placement side{toWorld(fishingBoat.at, {0, 0, 0.75f}), fishingBoat.at.yaw + turn * pi};
    float out = std::fmod(turn, 1.0f) == 0 ? 0.57f : 0.62f;
    addQuad(windows, side, {-0.3f, 1.42f, -out}, {0.3f, 1.42f, -out}, {0.3f, 0.98f, -out},
            {-0.3f, 0.98f, -out});
  }
}

void addJettyDeck(SampleMesh& mesh) {
  Random random(5);
  Placement at{jettyEnd, 0};
  constexpr int boards = 18;
  for (int i = 0; i < boards; ++i) {
    float z = jettyLength * float(i) / boards, lift = random.range(-0.015f, 0.015f),
          out = random.range(0, 0.08f);
    addBox(mesh, at, {-jettyHalfWidth - out, lift - 0.07f, z}, {jettyHalfWidth + out, lift, z + 0.44f}, 0.5f);
  }
  for (float x : {-0.7f, 0.7f}) addBeam(mesh, at, {x, -0.15f, 0}, {x, -0.15f, jettyLength}, 0.16f, 0.5f);
}

void addPiles(SampleMesh& mesh) {
  Placement at{jettyEnd, 0};
  for (float z = 0.3f; z < jettyLength; z += 1.9f) {
    for (float x : {-0.85f, 0.85f}) {
      float top = z < 1 ? 0.7f : 0.12f;
      addLathe(mesh, {toWorld(at, {x, 0, z}), 0}, {{0.13f, -3.4f, 2}, {0.12f, top, 0}, {0, top + 0.04f, 0}},
               7, 1);
    }
  }
}

void addCrates(SampleMesh& mesh) {
  Placement jetty{jettyEnd + Vec3{0.42f, 0, 6.2f}, 0.3f}, yard{shedPlace + Vec3{2.3f, 0, -0.6f}, 0.7f};
  addCrate(mesh, jetty, {-0.3f, 0, -0.3f}, {0.3f, 0.6f, 0.3f});
  addCrate(mesh, {jetty.origin + Vec3{-0.05f, 0.6f, 0.03f}, 0.8f}, {-0.22f, 0, -0.22f},
           {0.22f, 0.44f, 0.22f});
  addCrate(mesh, {jetty.origin + Vec3{0.02f, 0, -0.8f}, -0.1f}, {-0.26f, 0, -0.26f}, {0.26f, 0.5f, 0.26f});
  addCrate(mesh, yard, {-0.4f, -0.1f, -0.4f}, {0.4f, 0.7f, 0.4f});
  addCrate(mesh, {yard.origin + Vec3{0.9f, 0, 0.5f}, 0.2f}, {-0.35f, -0.1f, -0.35f}, {0.35f, 0.6f, 0.35f});
  addCrate(mesh, {yard.origin + Vec3{0.1f, 0.7f, 0.05f}, 1.1f}, {-0.3f, 0, -0.3f}, {0.3f, 0.6f, 0.3f});
  addCrate(mesh, {toWorld(fishingBoat.at, {0.2f, 0.33f, -1.5f}), 0.2f}, {-0.3f, 0, -0.3f},
           {0.3f, 0.5f, 0.3f});
}

void addBarrels(SampleMesh& mesh) {
  for (Vec3 place : {shedPlace + Vec3{-2.1f, 0, -0.9f}, shedPlace + Vec3{-1.9f, 0, -1.6f},
                     jettyEnd + Vec3{-0.45f, 0, 4.6f}, jettyEnd + Vec3{0.5f, 0, 2.4f}}) {
    addLathe(mesh, {place, place.x},
             {{0.24f, 0, 0.98f},
              {0.31f, 0.22f, 0.7f},
              {0.32f, 0.42f, 0.5f},
              {0.31f, 0.62f, 0.3f},
              {0.24f, 0.84f, 0.12f},
              {0.2f, 0.84f, 0.08f},
              {0.2f, 0.8f, 0.05f},
              {0, 0.8f, 0.01f}},
             10, 2);
  }
}

void addBuoys(SampleMesh& mesh) {
  for (Vec3 place : {Vec3{-7.5f, 0, -4}, Vec3{6.8f, 0, -5}, Vec3{-1.9f, 0, -2.6f}}) {
    addLathe(mesh, {place, 0},
             {{0, -0.3f, 1},
              {0.38f, -0.1f, 0.8f},
              {0.42f, 0.12f, 0.6f},
              {0.3f, 0.32f, 0.4f},
              {0.08f, 0.42f, 0.3f},
              {0.06f, 0.95f, 0.1f},
              {0, 0.98f, 0}},
             10, 2);
  }
}

void addNets(SampleMesh& poles, SampleMesh& nets) {
  Placement rack{{-3.2f, islandHeight(-3.2f, 8.0f), 8.0f}, -0.6f};
  for (float x : {-1.3f, 1.3f}) addBeam(poles, rack, {x, -0.4f, 0}, {x, 1.7f, 0}, 0.1f, 0.5f);
  addBeam(poles, rack, {-1.5f, 1.6f, 0}, {1.5f, 1.6f, 0}, 0.08f, 0.5f);
  auto net = [](float s, float t) {
    float sag = 0.18f * std::sin(3 * pi * s) * std::sin(pi * s);
    return Vec3{mix(-1.25f, 1.25f, s), mix(1.58f, 0.2f + std::abs(sag), t),
                0.3f * t * t - 0.1f * t * std::cos(9 * s)};
  };
  addSheet(nets, rack, 8, 3, net, {0, 0, 3, 2});
}

void addLampPosts(SampleMesh& posts, SampleMesh& globes) {
  for (Vec3 place :
       {jettyEnd + Vec3{-0.75f, 0, 0.25f}, Vec3{2.3f, islandHeight(2.3f, 9.6f), 9.6f},
        Vec3{-2.9f, islandHeight(-2.9f, 9.3f), 9.3f}, Vec3{5.4f, islandHeight(5.4f, 16.6f), 16.6f}}) {
    Placement at{place, 0};
    addLathe(posts, at, {{0.1f, -0.2f, 1}, {0.06f, 0.3f, 0.8f}, {0.05f, 2.2f, 0.3f}, {0.12f, 2.25f, 0.2f}}, 6,
             1);
    addLathe(posts, at, {{0.2f, 2.6f, 0.8f}, {0, 2.75f, 0.3f}}, 6, 1);
    addLathe(globes, at, {{0.1f, 2.25f, 1}, {0.17f, 2.42f, 0.5f}, {0.13f, 2.6f, 0}}, 8, 1);
  }
}

}  // namespace

void addHarbour(Scene& scene) {
  SampleMesh hulls{"boat_hulls", "boats", hullMaterial, {}, {}},
      decks{"boat_decks", "boats", plankMaterial, {}, {}};
  for (const Boat* boat : {&sailingBoat, &fishingBoat, &rowingBoat, &beachedBoat}) {
    addHull(hulls, *boat);
    addDeck(decks, *boat);
    addThwarts(decks, *boat);
  }
  SampleMesh spars{"spars", "boats", barkMaterial, {}, {}}, cabin{"cabin", "boats", houseMaterial, {}, {}};
  SampleMesh posts{"lamp_posts", "harbour", metalMaterial, {}, {}};
  addRigging(spars);
  addCabin(cabin, posts);
  addBeam(spars, {housePlace + Vec3{3.6f, 0.2f, -3.4f}, 0}, {0, -0.8f, 0}, {0, 5, 0}, 0.09f, 0.5f);
  for (SampleMesh* mesh : {&hulls, &decks, &spars, &cabin}) scene.meshes.push_back(std::move(*mesh));
  addCabinWindows(addMesh(scene, "boats", "cabin_windows", windowMaterial));

  addJettyDeck(addMesh(scene, "harbour", "jetty", plankMaterial));
  SampleMesh piles{"piles", "harbour", barkMaterial, {}, {}}, nets{"nets", "harbour", netMaterial, {}, {}};
  SampleMesh globes{"lamp_globes", "harbour", lanternMaterial, {}, {}};
  addPiles(piles);
  addNets(piles, nets);
  addLampPosts(posts, globes);
  for (SampleMesh* mesh : {&piles, &posts, &globes}) scene.meshes.push_back(std::move(*mesh));
  addCrates(addMesh(scene, "harbour", "crates", crateMaterial));
  addBarrels(addMesh(scene, "harbour", "barrels", barrelMaterial));
  addBuoys(addMesh(scene, "harbour", "buoys", metalMaterial));
  scene.meshes.push_back(std::move(nets));
  addSails(addMesh(scene, "harbour", "sails", sailMaterial));
}

}  // namespace facet::sample

#include "scene.h"

#include <algorithm>
#include <sstream>

namespace facet::sample {

namespace {

constexpr const char* sceneText =
#include "lighthouse.scene"
    ;

void addMesh(Scene& scene, const Row& row) {
  SampleMesh& mesh = scene.meshes.emplace_back();
  mesh.group = row.names.at(0);
  mesh.name = row.names.at(1);
  mesh.texture = row.names.at(2);
  mesh.shader = row.names.at(3);
}

void addPlace(Scene& scene, const Row& row) {
  vec3 place = row.vec(0);
  if (row.names.size() > 1) place = onGround(place.x, place.z, place.y);
  scene.places[row.names.at(0)] = {place, row[3]};
}

void addLatheRow(Scene& scene, const Row& row) {
  std::vector<Ring> rings;
  for (size_t i = 2; i < row.numbers.size(); i += 3) rings.push_back({row[i], row[i + 1], row[i + 2]});
  for (size_t i = 1; i < row.names.size(); ++i)
    addLathe(scene[row.names[0]], scene.places.at(row.names[i]), rings, int(row[0]), row[1]);
}

void addBoxRow(Scene& scene, const Row& row) {
  float repeats = row[6];
  UvRect part = repeats > 0 ? UvRect{} : row.rect(7);
  addBox(scene[row.names[0]], scene.placeOf(row), row.vec(0), row.vec(3), repeats, part);
}

void addBeamRow(Scene& scene, const Row& row) {
  Placement at = scene.placeOf(row);
  float count = row.numbers.size() > 7 ? row[7] : 1;
  for (float i = 0; i < count; ++i, at.yaw += 2 * pi / count)
    addBeam(scene[row.names[0]], at, row.vec(0), row.vec(3), row[6]);
}

void addCardsRow(Scene& scene, const Row& row) {
  addCrossedCards(scene[row.names[0]], scene.placeOf(row), int(row[0]), row[1], row[2]);
}

void addSheetRow(Scene& scene, const Row& row) {
  auto point = [&](float s, float t) {
    vec3 top = glm::mix(row.vec(6), row.vec(9), s), bottom = glm::mix(row.vec(15), row.vec(12), s);
    return glm::mix(top, bottom, t) + row.vec(18) * (t * std::sin(pi * (row[21] * s + row[22] * t)));
  };
  addSheet(scene[row.names[0]], scene.placeOf(row), int(row[0]), int(row[1]), point, row.rect(2));
}

const std::map<std::string_view, void (*)(Scene& scene, const Row& row)> rowKinds = {
    {"mesh", addMesh},       {"place", addPlace},    {"box", addBoxRow},     {"beam", addBeamRow},
    {"lathe", addLatheRow},  {"cards", addCardsRow}, {"sheet", addSheetRow}, {"house", addHouse},
    {"windows", addWindows}, {"fence", addFence},    {"boat", addBoat},      {"plants", addPlants},
};

}  // namespace

std::vector<Row> rowsOf(const char* text) {
  std::vector<Row> rows;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line.substr(0, line.find('#')));
    Row row;
    words >> row.word;
    for (std::string token; words >> token;) {
      char* end = nullptr;
      float number = std::strtof(token.c_str(), &end);
      *end == '\0' ? row.numbers.push_back(number) : row.names.push_back(token);
    }
    if (!row.word.empty()) rows.push_back(row);
  }
  return rows;
}

SampleMesh& Scene::operator[](std::string_view name) {
  return *std::ranges::find(meshes, name, &SampleMesh::name);
}

Scene makeScene() {
  Scene scene{{}, {{"tower", {towerPlace, 0}}, {"home", {housePlace, -0.22f}}, {"shed", {shedPlace, 0.5f}}}};
  for (const Row& row : rowsOf(sceneText)) rowKinds.at(row.word)(scene, row);
  addLand(scene);
  return scene;
}

}  // namespace facet::sample

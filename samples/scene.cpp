#include "scene.h"

#include <algorithm>
#include <sstream>
#include <stdexcept>

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

void addLathes(Scene& scene, const Row& row) {
  std::vector<Ring> rings;
  for (size_t i = 2; i < row.numbers.size(); i += 3) rings.push_back({row[i], row[i + 1], row[i + 2]});
  for (size_t i = 1; i < row.names.size(); ++i)
    addLathe(scene[row.names[0]], scene.places.at(row.names[i]), rings, int(row[0]), row[1]);
}

void addRow(Scene& scene, const Row& row) {
  auto at = [&] { return scene.places.at(row.names.at(1)); };
  if (row.word == "mesh")
    addMesh(scene, row);
  else if (row.word == "place")
    addPlace(scene, row);
  else if (row.word == "box")
    addBox(scene[row.names[0]], at(), row.vec(0), row.vec(3), row[6], row[6] > 0 ? UvRect{} : row.rect(7));
  else if (row.word == "beam")
    addBeam(scene[row.names[0]], at(), row.vec(0), row.vec(3), row[6]);
  else if (row.word == "lathe")
    addLathes(scene, row);
  else if (row.word == "house")
    addHouse(scene, at(), row);
  else if (row.word == "windows")
    addWindows(scene, at(), row);
  else if (row.word == "fence")
    addFence(scene, row);
  else if (row.word == "boat")
    addBoat(scene, scene.places.at(row.names[0]), row);
  else if (row.word == "plants")
    addPlants(scene, row);
  else
    throw std::runtime_error("unknown word in the scene: " + row.word);
}

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
  for (const Row& row : rowsOf(sceneText)) addRow(scene, row);
  addLand(scene);
  addLighthouse(scene);
  addHarbour(scene);
  return scene;
}

}  // namespace facet::sample

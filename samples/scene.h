#pragma once

#include <map>
#include <string>

#include "island.h"
#include "shapes.h"

// The scene is data: lighthouse.scene lists its meshes, places, parts and plants. What follows a formula
// instead is in code: the land and hulls.

namespace facet::sample {

/// A row of the data: a word, the names after it, and its numbers.
struct Row {
  std::string word;
  std::vector<std::string> names;
  std::vector<float> numbers;

  float operator[](size_t i) const { return numbers.at(i); }
  vec3 vec(size_t i) const { return {numbers.at(i), numbers.at(i + 1), numbers.at(i + 2)}; }
  UvRect rect(size_t i) const {
    return {numbers.at(i), numbers.at(i + 1), numbers.at(i + 2), numbers.at(i + 3)};
  }
};

/// A mesh of the scene. Names are as a model file holds them: folders divided by a backslash, no extension.
struct SampleMesh : BuiltMesh {
  std::string group;  ///< the object that the mesh is a part of
  std::string name;
};

struct Scene {
  std::vector<SampleMesh> meshes;  ///< in drawing order; a group's meshes follow each other
  std::map<std::string, Placement> places;

  /// The mesh of this name, which has to be there.
  SampleMesh& operator[](std::string_view name);
  /// The place that a row names after its mesh.
  const Placement& placeOf(const Row& row) const { return places.at(row.names.at(1)); }
};

Scene makeScene();

/// The rows of a text, without empty ones and without what follows a `#`. Numbers may be hexadecimal.
std::vector<Row> rowsOf(const char* text);

// What needs more than a shape for a row.

void addHouse(Scene& scene, const Row& row);
void addWindows(Scene& scene, const Row& row);
void addFence(Scene& scene, const Row& row);
void addBoat(Scene& scene, const Row& row);
void addPlants(Scene& scene, const Row& row);

/// What has no row: the ground with its rocks, and the sea.
void addLand(Scene& scene);

}  // namespace facet::sample

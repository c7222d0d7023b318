#pragma once

#include <gmock/gmock.h>

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "import/readers.h"
#include "model/model.h"
#include "support/format_builders.h"
#include "support/recording_desktop.h"

namespace facet {

/// What a reader makes of these bytes, finished, or the error it ends with.
struct Reading {
  Model model;
  std::string error;
  RecordingDesktop desktop;

  Reading(ReadModel* read, uint32_t modelType, std::string_view bytes, const std::string& path = "model") {
    // A copy of exactly this size, so that a sanitizer sees a read past it.
    const std::vector<std::byte> copy(asBytes(bytes).begin(), asBytes(bytes).end());
    FileFinder files;
    model.modelType = modelType;
    try {
      read(*openMemory(copy), LoadContext{path, files}, model);
      model.meshes.resize(model.meshCount);
      model.materials.resize(model.materialCount);
      finishModel(model);
    } catch (const LoadError& reason) {
      error = reason.what();
    }
  }

  const Mesh& mesh(size_t i) const { return model.meshes.at(i); }
  std::vector<uint16_t> indices(size_t i) const {
    return {mesh(i).indices.get(), mesh(i).indices.get() + mesh(i).indexCount};
  }
  std::array<float, 5> vertex(size_t meshIndex, size_t i) const {
    const Vertex& v = mesh(meshIndex).vertices[i];
    return {v.x, v.y, v.z, v.u, v.v};
  }
  std::vector<uint32_t> vertexCounts() const {
    std::vector<uint32_t> counts;
    for (const Mesh& each : model.meshes) counts.push_back(each.vertexCount);
    return counts;
  }
  std::vector<std::string> textures() const {
    std::vector<std::string> names;
    for (const Material& material : model.materials) names.push_back(material.textureName);
    return names;
  }
};

/// A malformed file and what comes of it: an error, or the vertex counts of the meshes.
struct Malformed {
  const char* name;
  std::string bytes;
  std::string error;
  std::vector<uint32_t> vertexCounts = {};
};

inline void expectMalformed(ReadModel* read, uint32_t modelType, const std::vector<Malformed>& table) {
  for (const Malformed& row : table) {
    SCOPED_TRACE(row.name);
    const Reading reading(read, modelType, row.bytes);
    EXPECT_THAT(reading.error, testing::HasSubstr(row.error));
    EXPECT_EQ(reading.error.empty(), row.error.empty()) << reading.error;
    if (row.error.empty()) {
      EXPECT_EQ(reading.vertexCounts(), row.vertexCounts);
    }
  }
}

/// Reads the file cut at every length: nothing may break, and no mesh may claim more than the file held.
inline void expectCutsSurvived(ReadModel* read, uint32_t modelType, const std::string& bytes) {
  for (size_t length = 0; length < bytes.size(); ++length) {
    const Reading reading(read, modelType, bytes.substr(0, length));
    for (const Mesh& mesh : reading.model.meshes)
      ASSERT_LE(mesh.vertexCount + mesh.indexCount, length) << "cut at " << length;
  }
}

/// `bytes` with a value put over the ones at `position`.
template <class T>
std::string patched(std::string bytes, size_t position, T value) {
  return bytes.replace(position, sizeof value, reinterpret_cast<const char*>(&value), sizeof value);
}

}  // namespace facet
